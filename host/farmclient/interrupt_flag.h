#pragma once

#include <atomic>
#include <memory>

/// Set from the GUI thread to end early what a worker thread is doing.
using InterruptFlag = std::shared_ptr<std::atomic<bool>>;
