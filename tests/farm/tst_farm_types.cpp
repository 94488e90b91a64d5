#include "farm/rendering/render_queue.h"
#include "tests/farm/farm_fixture.h"

using namespace farm;

namespace {

struct Case
{
    const char* name;
    /// The jobs of ann (a, or p for one with priority) and bob (b) in the order of their keys. Capital letters have
    /// scenes that can be rendered.
    const char* jobs;
    /// The second in which the first of these is finished.
    int finishedAt;
    int stops;
    int failedJobs;
};

const Case Cases[] = {
    {"the seventh job", "aaaaaaA", 1, 2, 0},
    {"behind other bad jobs of the account", "aaaaaaaaaA", 181, 2, 0},
    {"behind one of higher priority", "pppppppA", 61, 2, 0},
    {"of another account, which has used more", "aaaaaaaaaB", 1, 1, 9},
    {"of another account behind its bad one", "aaaaaaaaabB", 61, 1, 10},
};

} // namespace

class TypesTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_data = std::make_unique<FarmData>(m_folder->path());
    }

    // Jobs with broken scenes look like a broken renderer, but must not keep it from others.
    void BadJobsHoldUpNobodyElse_data() { AddRows(Cases); }
    void BadJobsHoldUpNobodyElse()
    {
        const auto& [name, jobs, finishedAt, stops, failedJobs] = Row(Cases);
        AddJobs(jobs);
        m_data->Change(
            "INSERT INTO account_use(account, level) SELECT key, 40 FROM accounts WHERE name = 'bob'");
        RenderQueue queue(m_data->database, m_data->feed, m_data->terms);
        int firstFinish = 0;
        int stopped = 0;
        for (int now = 1; now <= 1800; ++now) {
            for (auto frames = Choose(queue, now); !frames.empty(); frames = Choose(queue, now)) {
                const FrameKey& frame = frames.front().key;
                const bool wasStopped = IsStopped();
                if (QChar(QLatin1Char(jobs[frame.job - 1])).isUpper()) {
                    queue.Finish(frame, {}, 1, now);
                    firstFinish = firstFinish == 0 ? now : firstFinish;
                } else {
                    queue.Fail(frame, "no sail"_s, now);
                }
                stopped += int(!wasStopped && IsStopped());
            }
        }
        QCOMPARE(firstFinish, finishedAt);
        QCOMPARE(stopped, stops);
        QCOMPARE(m_data->Count("SELECT count(*) FROM jobs WHERE status = 7"), failedJobs);
    }

private:
    static std::vector<FrameTask> Choose(RenderQueue& queue, int now)
    {
        std::set<FrameKey> taken;
        return queue.Choose({{"povray"_s}, 1}, taken, now);
    }

    bool IsStopped() { return m_data->Count("SELECT count(*) FROM stopped_types") > 0; }

    void AddJobs(const char* jobs)
    {
        const std::int64_t bob = m_data->Add("bob", "x");
        const QString kinds = QString::fromLatin1(jobs);
        for (const QChar kind : kinds) {
            NewJob job = m_data->Job(kind);
            job.priority = kind == u'p' ? 9 : 0;
            if (kind.toLower() == u'b')
                job.account = bob;
            m_data->jobs.Add(job);
        }
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<FarmData> m_data;
};

QTEST_GUILESS_MAIN(TypesTest)
#include "tst_farm_types.moc"
