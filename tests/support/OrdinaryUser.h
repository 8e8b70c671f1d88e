#pragma once

#include <QtCore/QString>

#include <unistd.h>

/** Permissions do not stop the superuser. So the test is somebody else while this object lives, also for those who
 * ask beforehand what is permitted. */
class OrdinaryUser
{
public:
    OrdinaryUser() : m_former(::geteuid())
    {
        // The saved user stays, so that there is a way back.
        m_isOrdinary = m_former != 0 || ::setresuid(nobody, nobody, m_former) == 0;
    }
    ~OrdinaryUser() { static_cast<void>(::setresuid(m_former, m_former, m_former)); }
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
