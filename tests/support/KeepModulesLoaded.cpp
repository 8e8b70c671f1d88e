/**
 * Linked into the tests of sanitizer builds only. Graphics drivers are unloaded before leaks are counted, so that
 * what they leak has no name to tell it from leaks of ours. Here nothing is ever unloaded.
 */
extern "C" __attribute__((visibility("default"))) int dlclose(void*)
{
    return 0;
}
