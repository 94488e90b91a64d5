#include "farm/toml_config.h"

#include <CLI/CLI.hpp>
#include <toml++/toml.h>

#include <array>
#include <charconv>
#include <sstream>

namespace farm {

namespace {

[[noreturn]] void Refuse(const std::string& what, const toml::source_region& place)
{
    throw CLI::ConfigError(
        what + " (line " + std::to_string(place.begin.line) + " of the configuration file)");
}

// The shortest text that reads back as the same number, so that a price of 0.01 stays as it was written.
std::string TextOf(double number)
{
    std::array<char, 64> text {};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
    return {text.data(), end.ptr};
}

std::string TextOf(const std::string& key, const toml::node& node)
{
    if (const auto* const text = node.as_string())
        return text->get();
    if (const auto* const number = node.as_integer())
        return std::to_string(number->get());
    if (const auto* const number = node.as_floating_point())
        return TextOf(number->get());
    if (const auto* const flag = node.as_boolean())
        return flag->get() ? "true" : "false";
    Refuse("\"" + key + "\" cannot have this value", node.source());
}

class Reader : public CLI::Config
{
public:
    explicit Reader(const CLI::App& app)
        : m_app(app)
    {
    }

    std::string to_config(const CLI::App*, bool, bool, std::string) const override { return {}; }

    std::vector<CLI::ConfigItem> from_config(std::istream& input) const override
    {
        std::vector<CLI::ConfigItem> read;
        try {
            for (const auto& [key, node] : toml::parse(input))
                read.push_back(ItemOf(std::string(key.str()), node));
        } catch (const toml::parse_error& error) {
            Refuse(std::string(error.description()), error.source());
        }
        return read;
    }

private:
    CLI::ConfigItem ItemOf(const std::string& key, const toml::node& node) const
    {
        const CLI::Option* const option = m_app.get_option_no_throw("--" + key);
        if (!option || !option->get_configurable())
            Refuse("there is no setting \"" + key + '"', node.source());
        CLI::ConfigItem item;
        item.name = key;
        if (const auto* const list = node.as_array()) {
            for (const toml::node& element : *list)
                item.inputs.push_back(TextOf(key, element));
        } else {
            item.inputs = {TextOf(key, node)};
        }
        return item;
    }

    const CLI::App& m_app;
};

} // namespace

std::shared_ptr<CLI::Config> TomlConfig(const CLI::App& app)
{
    return std::make_shared<Reader>(app);
}

} // namespace farm
