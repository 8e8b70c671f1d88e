#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <functional>

/** What a program asks of the system about a file. */
enum FileCall : unsigned
{
    ReadCall = 1,
    WriteCall = 2,
    SyncCall = 4,
    /** Renames and links. */
    NameCall = 8,
    /** Of files and folders. */
    RemoveCall = 16,
    /** Of files and folders, unnamed ones too. */
    CreateCall = 32,
    ResizeCall = 64,

    /** Everything that leaves something on the disk. */
    ChangingCalls = WriteCall | NameCall | RemoveCall | CreateCall | ResizeCall
};

/** What goes wrong with some calls that this program makes, also from within the libraries that it uses. */
struct FileFault
{
    enum Effect
    {
        /** Every such call from the first one on. */
        Fails,
        /** Only that one. */
        FailsOnce,
        /** A signal comes in between: every second call does nothing and says so. */
        IsInterrupted,
        /** Fewer bytes are read or written than there could be. */
        IsShort,
        /** The program is killed before the call. */
        Kills,
        /** Something else happens before that one, which works then. */
        HappensLater
    };

    /** Of FileCall. */
    unsigned calls = 0;
    /** Of the file's path. */
    QString part;
    Effect effect = Fails;
    int error = 0;
    /** Counted from 1. */
    int first = 1;
    /** What happens later. */
    std::function<void()> meanwhile = {};
};

/** While this lives, no file can grow without a name, as on a network disk. */
class NoUnnamedFiles
{
public:
    NoUnnamedFiles();
    ~NoUnnamedFiles();
    NoUnnamedFiles(const NoUnnamedFiles&) = delete;
    NoUnnamedFiles& operator=(const NoUnnamedFiles&) = delete;
};

/** Lets the fault happen while this lives. One at a time. Programs that use it link FileFaults.cpp. */
class FileFaults
{
public:
    explicit FileFaults(const FileFault& fault);
    ~FileFaults();
    FileFaults(const FileFaults&) = delete;
    FileFaults& operator=(const FileFaults&) = delete;

    /** How many such calls there were, the failed ones included. */
    static int Count();
};

/** Runs `task` in a child process that is killed before its call number `call` that changes something in `folder`.
 *  False when the task came to its end, after fewer calls. Only where this process has one thread. */
bool IsKilledAtCall(int call, const QString& folder, const std::function<void()>& task);
