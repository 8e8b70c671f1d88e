#include <vantorAudioEngine/Version.h>

using namespace Qt::Literals::StringLiterals;

namespace vantoraudio::AudioEngine {

namespace {
constexpr int majorVersion = 1;
constexpr int minorVersion = 122;
constexpr int patchVersion = 2;
} // namespace

// Callers read the first reference as the patch number, so the order stays smallest part first.
void libVersion(int& patch, int& minor, int& major)
{
    patch = patchVersion;
    minor = minorVersion;
    major = majorVersion;
}

QString libVersionString()
{
    return u"%1.%2.%3"_s.arg(majorVersion).arg(minorVersion).arg(patchVersion);
}

} // namespace vantoraudio::AudioEngine
