#pragma once

#include <QByteArray>

#include <string>
#include <utility>
#include <vector>

namespace farm {

/// Figures in Prometheus' text format.
class MetricsText
{
public:
    /// Figures by the values of their label. A single figure has no label.
    using Values = std::vector<std::pair<std::string, double>>;

    /// @param type is "gauge" or "counter".
    /// @param label is the name of the label; unused for a single figure.
    void Add(const char* name, const char* type, const char* help, const Values& values, const char* label);
    void Add(const char* name, const char* type, const char* help, double value);

    QByteArray Result() const { return QByteArray::fromStdString(m_text); }

private:
    std::string m_text;
};

} // namespace farm
