#include "host/services/logger_service.h"

#include <QDir>
#include <QFileInfo>
#include <QStringList>

#include <spdlog/logger.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/sinks/stdout_color_sinks.h>

#include <vector>

namespace {

spdlog::level::level_enum SeverityOf(int level)
{
    if (level <= LoggerService::Critical)
        return spdlog::level::critical;
    if (level <= LoggerService::Error)
        return spdlog::level::err;
    if (level <= LoggerService::Warning)
        return spdlog::level::warn;
    if (level <= LoggerService::Info)
        return spdlog::level::info;
    return level <= LoggerService::Debug ? spdlog::level::debug : spdlog::level::trace;
}

/// Keeps a message on one line, even when a name from the server contains control characters.
QString OneLine(const QString& text)
{
    QString line;
    line.reserve(text.size());
    for (const QChar c : text) {
        if (c == QLatin1Char('\n'))
            line += QLatin1String("\\n");
        else if (c.category() == QChar::Other_Control || c == QChar::LineSeparator
            || c == QChar::ParagraphSeparator)
            line += QLatin1Char(' ');
        else
            line += c;
    }
    return line;
}

spdlog::sink_ptr FileSink(const LogOptions& options)
{
    QDir().mkpath(QFileInfo(options.file).absolutePath());
    return std::make_shared<spdlog::sinks::rotating_file_sink_mt>(
        QFile::encodeName(options.file).toStdString(), static_cast<std::size_t>(options.maxFileBytes),
        static_cast<std::size_t>(options.oldFiles));
}

} // namespace

QStringList LogOptions::Levels()
{
    return {QStringLiteral("trace"), QStringLiteral("debug"), QStringLiteral("info"),
        QStringLiteral("warning"), QStringLiteral("error"), QStringLiteral("critical")};
}

LoggerService::LoggerService(const LogOptions& options, QObject* parent)
    : ServiceBase<LoggerObject>(parent)
{
    std::vector<spdlog::sink_ptr> sinks;
    if (options.console)
        sinks.push_back(std::make_shared<spdlog::sinks::stderr_color_sink_mt>());
    QString failure;
    if (!options.file.isEmpty()) {
        try {
            sinks.push_back(FileSink(options));
        } catch (const spdlog::spdlog_ex& error) {
            failure = QString::fromLocal8Bit(error.what());
        }
    }
    m_logger = std::make_shared<spdlog::logger>("quillstar", sinks.begin(), sinks.end());
    m_logger->set_pattern("%Y-%m-%d %H:%M:%S.%e [%^%l%$] %v");
    m_logger->set_level(spdlog::level::from_str(options.level.toStdString()));
    m_logger->flush_on(spdlog::level::trace);
    if (!failure.isEmpty())
        LoggerService::Write(failure, Warning, QStringLiteral("log"), {}, -1);
}

LoggerService::~LoggerService() = default;

void LoggerService::Write(
    const QString& message, int level, const QString& category, const QString& source, int line)
{
    const auto severity = SeverityOf(level);
    if (!m_logger->should_log(severity))
        return;
    QString text = QLatin1Char('[') + category + QLatin1String("] ") + message;
    if (!source.isEmpty())
        text += QLatin1String(" (") + source
            + (line < 0 ? QString() : QLatin1Char(':') + QString::number(line)) + QLatin1Char(')');
    m_logger->log(severity, OneLine(text).toStdString());
}
