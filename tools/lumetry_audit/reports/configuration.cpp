#include "lumetry_audit/reports/configuration.h"

#include "lumetry_audit/reports/files.h"

#include <toml++/toml.h>

#include <fnmatch.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <limits>
#include <sstream>
#include <string_view>
#include <utility>

namespace lumetry {
namespace {

bool fits(const std::optional<std::string>& pattern, const std::string& text) {
    return !pattern || fnmatch(pattern->c_str(), text.c_str(), 0) == 0;
}

/// What is wrong first in a file.
struct Complaint {
    toml::source_index line = std::numeric_limits<toml::source_index>::max();
    std::string what;
};

/// Reads the keys of one table, and finds fault with those that are wrong.
class TableReader {
public:
    using Read = std::function<void(const toml::node&)>;

    /// @param name of the table, as the file says it; empty for the file itself
    TableReader(const toml::table& table, std::string name, Complaint& complaint)
        : table_(table), name_(std::move(name)), complaint_(complaint) {}

    void add(const std::string& key, Read read) { keys_.emplace_back(key, std::move(read)); }

    void addNumber(const std::string& key, double least, double most,
                   const std::function<void(double)>& take) {
        add(key, [=, this](const toml::node& node) {
            const auto value = node.value<double>();
            if (!node.is_number() || !value || !(*value >= least && *value <= most)) {
                complain(node, "\"" + key + "\" has to be a number from " + text(least) + " to " +
                                   text(most));
                return;
            }
            take(*value);
        });
    }

    void addCount(const std::string& key, std::size_t& count) {
        constexpr std::int64_t most = 1000000;
        add(key, [=, this, &count](const toml::node& node) {
            const auto value = node.value<std::int64_t>();
            if (!node.is_integer() || !value || *value < 1 || *value > most) {
                complain(node, "\"" + key + "\" has to be a whole number from 1 to " +
                                   std::to_string(most));
                return;
            }
            count = static_cast<std::size_t>(*value);
        });
    }

    void addText(const std::string& key, const std::function<bool(const std::string&)>& take,
                 const std::string& wanted) {
        add(key, [=, this](const toml::node& node) {
            const auto value = node.value<std::string>();
            if (!node.is_string() || !value || !take(*value)) {
                complain(node, "\"" + key + "\" has to be " + wanted);
            }
        });
    }

    void addTruth(const std::string& key, const std::function<void(bool)>& take) {
        add(key, [=, this](const toml::node& node) {
            const auto value = node.value<bool>();
            if (!node.is_boolean() || !value) {
                complain(node, "\"" + key + "\" has to be true or false");
                return;
            }
            take(*value);
        });
    }

    void read() {
        for (const auto& [key, node] : table_) {
            const std::string_view name = key.str();
            const auto known = std::ranges::find(keys_, name, &std::pair<std::string, Read>::first);
            if (known == keys_.end()) {
                complainAt(key.source(), "there is no \"" + std::string(name) + "\"" +
                                             (name_.empty() ? "" : " in [" + name_ + "]") +
                                             "; it has " + knownKeys());
            } else {
                known->second(node);
            }
        }
    }

    void complain(const toml::node& node, const std::string& what) {
        complainAt(node.source(), what);
    }

private:
    void complainAt(const toml::source_region& where, const std::string& what) {
        if (where.begin.line < complaint_.line) {
            complaint_ = {where.begin.line, what};
        }
    }

    [[nodiscard]] std::string knownKeys() const {
        std::string list;
        for (const auto& [key, read] : keys_) {
            list += (list.empty() ? "" : ", ") + key;
        }
        return list;
    }

    static std::string text(double value) {
        std::ostringstream out;
        out << value;
        return out.str();
    }

    const toml::table& table_;
    std::string name_;
    Complaint& complaint_;
    std::vector<std::pair<std::string, Read>> keys_;
};

class ConfigurationReader {
public:
    ConfigurationReader(Configuration& configuration, Complaint& complaint)
        : configuration_(configuration), complaint_(complaint) {}

    void read(const toml::table& file) {
        Thresholds& thresholds = configuration_.thresholds;
        TableReader reader(file, "", complaint_);
        reader.addText(
            "level",
            [&](const std::string& level) {
                thresholds.enhanced = level == "AAA";
                return level == "AA" || level == "AAA";
            },
            R"("AA" or "AAA")");
        reader.addText(
            "fail-on",
            [&](const std::string& name) {
                const auto failOn = failOnNamed(name);
                configuration_.failOn = failOn.value_or(FailOn::error);
                return failOn.has_value();
            },
            R"("error", "warning" or "never")");
        reader.addCount("limit", configuration_.limit);
        addRule(reader, Rule::contrast, [&](TableReader& table) {
            table.addNumber("minimum", 1, 21, [&](double value) { thresholds.contrast = value; });
            table.addNumber("minimum-large", 1, 21,
                            [&](double value) { thresholds.largeContrast = value; });
            table.addNumber("estimate-margin", 0, 20,
                            [&](double value) { thresholds.estimateMargin = value; });
        });
        addRule(reader, Rule::targetSize, [&](TableReader& table) {
            table.addNumber("minimum", 0, longest,
                            [&](double value) { thresholds.targetSize = value; });
        });
        addRule(reader, Rule::name, [](TableReader&) {});
        addRule(reader, Rule::textSize, [&](TableReader& table) {
            table.addNumber("minimum", 0, longest,
                            [&](double value) { thresholds.textSize = value; });
        });
        addRule(reader, Rule::consistency, [&](TableReader& table) {
            table.addNumber("color-difference", 0, 100,
                            [&](double value) { thresholds.colorDifference = value; });
            table.addNumber("grid", 1, longest, [&](double value) { thresholds.grid = value; });
            table.addCount("font-sizes", thresholds.fontSizes);
            table.addCount("families", thresholds.families);
            table.addCount("radii", thresholds.radii);
        });
        reader.add("ignore", [&](const toml::node& node) { readIgnored(reader, node); });
        reader.read();
    }

private:
    static constexpr double longest = 10000; ///< points

    template<typename AddKeys>
    void addRule(TableReader& reader, Rule rule, AddKeys addKeys) {
        const std::string name(describe(rule).identifier);
        reader.add(name, [this, &reader, name, rule, addKeys](const toml::node& node) {
            const toml::table* const table = node.as_table();
            if (table == nullptr) {
                reader.complain(node, "\"" + name + "\" has to be a table, [" + name + "]");
                return;
            }
            TableReader own(*table, name, complaint_);
            own.addTruth("enabled", [this, rule](bool enabled) {
                if (enabled) {
                    configuration_.thresholds.off.erase(rule);
                } else {
                    configuration_.thresholds.off.insert(rule);
                }
            });
            addKeys(own);
            own.read();
        });
    }

    void readIgnored(TableReader& reader, const toml::node& node) {
        const toml::array* const list = node.as_array();
        if (list == nullptr) {
            reader.complain(node, R"("ignore" has to be a list of tables, [[ignore]])");
            return;
        }
        for (const toml::node& entry : *list) {
            const toml::table* const table = entry.as_table();
            if (table == nullptr) {
                reader.complain(entry, R"("ignore" has to be a list of tables, [[ignore]])");
                return;
            }
            Ignored ignored;
            TableReader own(*table, "ignore", complaint_);
            own.addText(
                "rule",
                [&](const std::string& name) {
                    ignored.rule = ruleNamed(name);
                    return ignored.rule.has_value();
                },
                "the identifier of a rule: contrast, target-size, name, text-size or consistency");
            const auto addPattern = [&own](const char* key, std::optional<std::string>& pattern) {
                own.addText(
                    key,
                    [&pattern](const std::string& text) {
                        pattern = text;
                        return true;
                    },
                    "a text");
            };
            addPattern("role", ignored.role);
            addPattern("title", ignored.title);
            addPattern("path", ignored.path);
            own.addText(
                "reason",
                [&](const std::string& text) {
                    ignored.reason = text;
                    return !text.empty();
                },
                "a text that says why");
            own.read();
            if (!table->contains("reason")) {
                own.complain(entry, R"(this [[ignore]] needs a "reason" that says why)");
            } else if (table->size() == 1) {
                own.complain(entry, R"(this [[ignore]] would ignore everything: give it a "rule", )"
                                    R"("role", "title" or "path")");
            }
            configuration_.ignored.push_back(std::move(ignored));
        }
    }

    Configuration& configuration_;
    Complaint& complaint_;
};

} // namespace

bool Ignored::matches(const Finding& finding) const {
    return (!rule || *rule == finding.rule) && fits(role, finding.role) &&
           fits(title, finding.title) && fits(path, finding.path);
}

std::optional<Rule> ruleNamed(const std::string& identifier) {
    for (const Rule rule :
         {Rule::contrast, Rule::targetSize, Rule::name, Rule::textSize, Rule::consistency}) {
        if (describe(rule).identifier == identifier) {
            return rule;
        }
    }
    return std::nullopt;
}

std::optional<FailOn> failOnNamed(const std::string& name) {
    constexpr std::array names = std::to_array<std::pair<std::string_view, FailOn>>(
        {{"error", FailOn::error}, {"warning", FailOn::warning}, {"never", FailOn::never}});
    const auto* const found =
        std::ranges::find(names, name, &std::pair<std::string_view, FailOn>::first);
    return found == names.end() ? std::nullopt : std::optional(found->second);
}

std::optional<Configuration> readConfiguration(const std::filesystem::path& file,
                                               std::string& problem) {
    const auto text = readFile(file);
    if (!text) {
        problem = file.string() + " cannot be read.";
        return std::nullopt;
    }
    toml::table table;
    try {
        table = toml::parse(*text);
    } catch (const toml::parse_error& error) {
        problem = file.string() + ", line " + std::to_string(error.source().begin.line) + ": " +
                  std::string(error.description()) + ".";
        return std::nullopt;
    }
    Configuration configuration;
    Complaint complaint;
    ConfigurationReader(configuration, complaint).read(table);
    if (!complaint.what.empty()) {
        problem = file.string() + ", line " + std::to_string(complaint.line) + ": " +
                  complaint.what + ".";
        return std::nullopt;
    }
    return configuration;
}

} // namespace lumetry
