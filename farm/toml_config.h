#pragma once

#include <memory>

namespace CLI {
class App;
class Config;
} // namespace CLI

namespace farm {

/// Reads a TOML file whose keys are the names of the app's options without their dashes. Throws CLI::ConfigError, which
/// names the key and its line, for one that is not an option or whose value is a table, a date or a time.
std::shared_ptr<CLI::Config> TomlConfig(const CLI::App& app);

} // namespace farm
