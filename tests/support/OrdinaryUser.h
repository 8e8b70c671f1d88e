#pragma once

#include <QtCore/QString>

#include <unistd.h>

/** No permission stops the superuser, so for this object's life the test is somebody else. */
class OrdinaryUser
{
public:
    OrdinaryUser() : m_former(::geteuid()) { m_isOrdinary = m_former != 0 || ::seteuid(nobody) == 0; }
    ~OrdinaryUser() { static_cast<void>(::seteuid(m_former)); }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

    bool IsOrdinary() const { return m_isOrdinary; }

    /** Makes the user the owner of a file or folder, so that its permissions count. */
    static bool TakesOver(const QString& path)
    {
        return ::geteuid() != 0 || ::chown(qPrintable(path), nobody, nobody) == 0;
    }

private:
    static constexpr uid_t nobody = 65534;

    uid_t m_former;
    bool m_isOrdinary;
};
