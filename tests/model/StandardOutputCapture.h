#pragma once

#include <QByteArray>
#include <QTemporaryFile>

#include <cstdio>
#include <unistd.h>

/// Takes what is written to the standard output while it lives.
class StandardOutputCapture
{
public:
    StandardOutputCapture()
        : m_isOpen(m_file.open())
    {
        std::fflush(stdout);
        m_original = dup(STDOUT_FILENO);
        dup2(m_file.handle(), STDOUT_FILENO);
    }

    ~StandardOutputCapture()
    {
        std::fflush(stdout);
        dup2(m_original, STDOUT_FILENO);
        close(m_original);
    }

    StandardOutputCapture(const StandardOutputCapture &) = delete;
    StandardOutputCapture &operator=(const StandardOutputCapture &) = delete;

    /// All that was written so far.
    QByteArray text()
    {
        std::fflush(stdout);
        QFile file(m_file.fileName());
        return m_isOpen && file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    QTemporaryFile m_file;
    bool m_isOpen;
    int m_original;
};
