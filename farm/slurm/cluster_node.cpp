#include "farm/slurm/cluster_node.h"

#include "farm/slurm/output_fields.h"

#include <algorithm>
#include <iterator>

namespace farm {

namespace {

struct Sign
{
    char sign;
    const char* text;
};

// The characters that Slurm appends to a state.
constexpr Sign Signs[] = {
    {'*', "not responding"},
    {'~', "powered off"},
    {'#', "powering up"},
    {'!', "about to be powered off"},
    {'%', "powering down"},
    {'$', "reserved for maintenance"},
    {'@', "about to be rebooted"},
    {'^', "rebooting"},
    {'-', "planned for another job"},
    {'+', "some jobs ending"},
};

struct Word
{
    const char* state;
    const char* text;
};

// Slurm's words that need a clearer one. Others are shown as they are.
constexpr Word Words[] = {
    {"mixed", "partly allocated"},
    {"completing", "jobs ending"},
    {"maint", "in maintenance"},
    {"fail", "expected to fail"},
    {"failing", "busy and expected to fail"},
    {"inval", "has less than configured"},
    {"perfctrs", "in use by performance counters"},
};

QString StateText(const QString& state)
{
    const auto word = std::find_if(std::begin(Words), std::end(Words),
        [&state](const Word& one) { return state == QLatin1String(one.state); });
    if (word != std::end(Words))
        return QLatin1String(word->text);
    QString text = state;
    return text.replace(QLatin1Char('_'), QLatin1Char(' '));
}

RenderNode NodeOf(const QString& name, QString state, const QString& reason)
{
    RenderNode node;
    node.name = name;
    const auto sign = std::find_if(std::begin(Signs), std::end(Signs),
        [&state](const Sign& one) { return state.endsWith(QLatin1Char(one.sign)); });
    if (state.size() > 1 && sign != std::end(Signs)) {
        state.chop(1);
        node.detail = QLatin1String(sign->text);
    }
    node.state = StateText(state.toLower());
    if (reason != QLatin1String("none"))
        node.reason = reason;
    return node;
}

/// @param partition ends with an asterisk when it is the default.
bool IsAmong(const std::set<QString>& partitions, const QString& partition)
{
    const bool isDefault = partition.endsWith(QLatin1Char('*'));
    return partitions.count(isDefault ? partition.chopped(1) : partition) != 0
        || (isDefault && partitions.count(QString()) != 0);
}

} // namespace

std::vector<RenderNode> ReadNodes(const QByteArray& output, const std::set<QString>& partitions)
{
    std::vector<RenderNode> nodes;
    std::set<QString> known;
    for (const QStringList& fields : FieldsIn(output, 4)) {
        const bool isNode = !fields[0].isEmpty() && !fields[2].isEmpty();
        if (isNode && IsAmong(partitions, fields[1]) && known.insert(fields[0]).second)
            nodes.push_back(NodeOf(fields[0], fields[2], fields[3]));
    }
    return nodes;
}

} // namespace farm
