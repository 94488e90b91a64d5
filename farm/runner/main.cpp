#include "farm/runner/frame_runner.h"

#include <QCoreApplication>

#include <cstdio>
#include <stdexcept>
#include <sys/stat.h>

// Runs the renderer of one frame as its order says and leaves the outcome beside the order. It is started by the farm
// on the farm's machine, and by a cluster on the nodes.
int main(int argc, char** argv)
{
    if (argc != 2 || argv[1][0] == '-') {
        std::fprintf(stderr,
            "Usage: quillstar-run-frame ORDER\n"
            "Runs the renderer of one frame; the order is a file that a render farm has written.\n"
            "Exits with 0 when the outcome has been written, however the renderer has ended.\n");
        return 2;
    }
    ::umask(077);
    const QCoreApplication application(argc, argv);
    try {
        const farm::RunOrder order = farm::ReadOrder(QString::fromLocal8Bit(argv[1]));
        farm::WriteOutcome(order.files.Outcome(), farm::FrameRunner(order).Run());
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "quillstar-run-frame: %s\n", error.what());
        return 1;
    }
}
