#pragma once

#include <atomic>
#include <memory>

/// The GUI thread sets it to make a worker thread stop its current work early.
using InterruptFlag = std::shared_ptr<std::atomic<bool>>;
