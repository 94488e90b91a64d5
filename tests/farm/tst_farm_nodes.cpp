#include "farm/base/local_time.h"
#include "farm/http/nodes_json.h"
#include "farm/slurm/cluster_node.h"
#include "farm/slurm/node_health.h"
#include "farm/slurm/node_watch.h"
#include "tests/support/test_files.h"
#include "tests/support/test_tables.h"
#include "tests/support/waiting.h"

#include <QJsonObject>
#include <QTemporaryDir>

#include <cstdio>
#include <thread>

using namespace farm;

namespace {

// The output of sinfo, the partitions that the farm uses, and the nodes as name:state/detail/reason.
const std::tuple<const char*, const char*, const char*, const char*> Outputs[] = {
    {"the default partition", "n1|main*|idle|none\nn2|gpu|idle|none\n", "", "n1:idle//"},
    {"a partition by its name", "n1|main*|idle|none\nn2|gpu|allocated|none\n", "gpu", "n2:allocated//"},
    {"the default partition by its name", "n1|main*|idle|none\n", "main", "n1:idle//"},
    {"several partitions for a type", "n1|main*|idle|none\nn2|gpu|idle|none\nn3|old|idle|none\n", "gpu,main",
        "n1:idle// n2:idle//"},
    {"a node in two partitions", "n1|main*|down|fan\nn1|gpu|down|fan\n", "gpu,main", "n1:down//fan"},
    {"not responding", "n1|main*|down*|Not responding\n", "", "n1:down/not responding/Not responding"},
    {"other words", "n1|main*|mixed-|none\nn2|main*|POWERED_DOWN|none\n", "",
        "n1:partly allocated/planned for another job/ n2:powered down//"},
    {"a state of later versions", "n1|main*|blocked|none\n", "", "n1:blocked//"},
    {"separators and markup in a reason", "n1|main*|drained|a | <b>|\n", "", "n1:drained//a | <b>|"},
    {"a reason of two lines", "n1|main*|drained|first\nsecond\nn2|main*|idle|none\n", "",
        "n1:drained//first n2:idle//"},
    {"truncated", "n1|main*|idle|none\nn2|main*|id", "", "n1:idle//"},
    {"without name or state", "|main*|idle|none\nn2|main*||none\n", "", ""},
    {"something else", "sinfo: error: no luck\n\n||||||\n", "", ""},
};

std::set<QString> Partitions(const char* names)
{
    const QStringList list = QString::fromLatin1(names).split(QLatin1Char(','));
    return {list.begin(), list.end()};
}

/// A command sinfo that counts its calls and does what a script says.
class Sinfo
{
    QTemporaryDir m_folder;
    QByteArray m_path = qgetenv("PATH");

public:
    explicit Sinfo(const QByteArray& script)
    {
        Does(script);
        qputenv("PATH", m_folder.path().toUtf8() + ':' + m_path);
    }
    ~Sinfo() { qputenv("PATH", m_path); }

    bool Does(const QByteArray& script) const
    {
        // The command may be running at this moment, so it is replaced as a whole.
        const QString file = m_folder.filePath("sinfo"_s);
        const QString unfinished = file + ".new"_s;
        return WriteFile(unfinished, "#!/bin/sh\necho x >>\"${0%/*}/calls\"\n" + script + '\n')
            && QFile::setPermissions(unfinished, QFile::ReadOwner | QFile::ExeOwner)
            && std::rename(QFile::encodeName(unfinished), QFile::encodeName(file)) == 0;
    }
    int Calls() const { return ReadFile(m_folder.filePath("calls"_s)).count('x'); }
};

} // namespace

class NodesTest : public QObject
{
    Q_OBJECT

private slots:
    void ReadsTheNodesThatTheFarmUses_data() { AddRows(Outputs); }
    void ReadsTheNodesThatTheFarmUses()
    {
        const auto& [name, output, partitions, expected] = Row(Outputs);
        QStringList nodes;
        for (const RenderNode& node : ReadNodes(output, Partitions(partitions)))
            nodes.append("%1:%2/%3/%4"_s.arg(node.name, node.state, node.detail, node.reason));
        QCOMPARE(nodes.join(u' '), QLatin1String(expected));
    }

    void NodesWithTroubleComeFirstAndNodesWithFramesAreNeverMissing()
    {
        const std::vector<RenderNode> nodes {{"n1"_s, "idle"_s, {}, {}, {}},
            {"n2"_s, "down"_s, {}, "fan"_s, {}}, {"n3"_s, "idle"_s, {}, {}, {{"povray"_s, "no lamp"_s}}}};
        QStringList list;
        const QJsonArray json = NodesJson(nodes, {{"n1"_s, 2}, {"n9"_s, 1}});
        for (const QJsonValue& node : json)
            list.append(node["host"_s].toString() + QString::number(node["frames"_s].toInt()));
        QCOMPARE(list.join(u' '), "n20 n30 n12 n91"_s);
        QCOMPARE(json[1]["left_out"_s],
            QJsonValue(QJsonArray {QJsonObject {{"type"_s, "povray"_s}, {"message"_s, "no lamp"_s}}}));
    }

    void AsksWhileSomebodyLooksAndNoOftenerThanItMay()
    {
        const Sinfo sinfo("echo 'n1|main*|idle|none'");
        NodeBoard board;
        QVERIFY(!board.Look(Now()));
        ClusterCommands commands(std::chrono::seconds {30});
        const NodeHealth health;
        SlurmSettings settings;
        settings.interval = std::chrono::hours {1};
        {
            const NodeWatch watch(settings, {{"povray"_s, {}}}, {commands, health, board});
            QCOMPARE(board.Look(Now())->nodes.size(), std::size_t(0));
            EVENTUALLY(!board.Look(Now())->nodes.empty());
            QCOMPARE(sinfo.Calls(), 1);
        }
        settings.interval = std::chrono::hours {0};
        const NodeWatch watch(settings, {{"povray"_s, {}}}, {commands, health, board});
        // A request looks from a thread of its own.
        std::thread([&board] { board.Look(Now()); }).join();
        EVENTUALLY_COMPARE(sinfo.Calls(), 2);
        EVENTUALLY(!board.Look(Now())->nodes.empty());
    }

    void KeepsTheLastStatesForAWhileWhenTheClusterDoesNotAnswer()
    {
        const Sinfo sinfo("echo 'n1|main*|idle|none'");
        NodeBoard board;
        ClusterCommands commands(std::chrono::seconds {30});
        const NodeHealth health;
        SlurmSettings settings;
        settings.interval = std::chrono::hours {0};
        const NodeWatch watch(settings, {{"povray"_s, {}}}, {commands, health, board});
        EVENTUALLY(!board.Look(Now())->nodes.empty());
        QVERIFY(sinfo.Does("echo 'Unable to contact slurm controller' >&2; exit 1"));
        EVENTUALLY(board.Look(Now())->fault.contains("(slurmctld) does not answer"_s));
        QCOMPARE(board.Look(Now())->nodes.size(), std::size_t(1));
        const auto late = board.Look(Now() + NodeBoard::LongestAge + 1);
        QVERIFY(late->nodes.empty() && late->time == 0 && !late->fault.isEmpty());
        QVERIFY(sinfo.Does("echo 'n1|main*|drained|fan'"));
        EVENTUALLY(board.Look(Now())->fault.isEmpty());
        QCOMPARE(board.Look(Now())->nodes.at(0).reason, "fan"_s);
    }
};

QTEST_GUILESS_MAIN(NodesTest)
#include "tst_farm_nodes.moc"
