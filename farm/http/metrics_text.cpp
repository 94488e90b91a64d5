#include "farm/http/metrics_text.h"

#include <QString>

namespace farm {

namespace {

std::string Figure(double value)
{
    return QString::number(value, 'g', 15).toStdString();
}

std::string Escaped(const std::string& text)
{
    std::string escaped;
    for (const char character : text) {
        if (character == '"' || character == '\\')
            escaped += '\\';
        escaped += character == '\n' ? std::string("\\n") : std::string(1, character);
    }
    return escaped;
}

} // namespace

void MetricsText::Add(
    const char* name, const char* type, const char* help, const Values& values, const char* label)
{
    m_text += std::string("# HELP ") + name + ' ' + help + "\n# TYPE " + name + ' ' + type + '\n';
    for (const auto& [of, value] : values) {
        m_text += name;
        if (!of.empty())
            m_text += std::string("{") + label + "=\"" + Escaped(of) + "\"}";
        m_text += ' ' + Figure(value) + '\n';
    }
}

void MetricsText::Add(const char* name, const char* type, const char* help, double value)
{
    Add(name, type, help, {{{}, value}}, "");
}

} // namespace farm
