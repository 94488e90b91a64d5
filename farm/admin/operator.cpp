#include "farm/admin/operator.h"

#include "farm/base/errors.h"

#include <cstdio>
#include <iostream>
#include <pwd.h>
#include <string>
#include <termios.h>
#include <unistd.h>

namespace farm {

namespace {

/// Keeps a terminal from showing what is typed, for as long as this object lives. Ctrl+C does nothing meanwhile, since
/// it would leave the terminal in that state; Ctrl+D gives up.
class Silence
{
public:
    Silence()
    {
        ::tcgetattr(STDIN_FILENO, &m_before);
        termios silent = m_before;
        silent.c_lflag &= ~tcflag_t(ECHO | ISIG);
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
    }
    ~Silence() { ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &m_before); }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    termios m_before {};
};

QString ReadLine()
{
    std::string line;
    if (!std::getline(std::cin, line))
        throw InvalidInput("there is no password");
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return QString::fromStdString(line);
}

QString Ask(const char* question)
{
    std::fputs(question, stderr);
    const Silence silence;
    const QString answer = ReadLine();
    std::fputs("\n", stderr);
    return answer;
}

} // namespace

Actor Operator()
{
    const passwd* const user = ::getpwuid(::getuid());
    QString who = user ? QString::fromLocal8Bit(user->pw_name) : QString::number(::getuid());
    const QString before = qEnvironmentVariable("SUDO_USER");
    if (!before.isEmpty())
        who = QStringLiteral("%1 (%2)").arg(who, before);
    return {who, QStringLiteral("the command line")};
}

QString ReadNewPassword()
{
    if (::isatty(STDIN_FILENO) == 0)
        return ReadLine();
    const QString password = Ask("New password: ");
    if (Ask("Repeat it: ") != password)
        throw InvalidInput("the two passwords differ");
    return password;
}

} // namespace farm
