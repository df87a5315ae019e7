#include "platform/linux/system/environment.h"

#include "base/text.h"

#include <cstdlib>
#include <utility>

namespace lumetry {
namespace {

/// LANGUAGE is a list and goes first, unless the locale says that no translation is wanted.
std::vector<std::string> userLanguages() {
    const std::string locale =
        environmentText("LC_ALL", environmentText("LC_MESSAGES", environmentText("LANG", "C")));
    auto languages = languagesOfLocale(locale);
    if (languages.empty()) {
        return {};
    }
    std::vector<std::string> preferred;
    for (const std::string& name : nonEmptyParts(environmentText("LANGUAGE"), ':')) {
        const auto more = languagesOfLocale(name);
        preferred.insert(preferred.end(), more.begin(), more.end());
    }
    preferred.insert(preferred.end(), languages.begin(), languages.end());
    return preferred;
}

} // namespace

std::string environmentText(const char* name, std::string otherwise) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing changes the environment meanwhile
    const char* const value = std::getenv(name);
    return value != nullptr && *value != '\0' ? value : std::move(otherwise);
}

std::vector<std::string> languagesOfLocale(const std::string& locale) {
    const std::string modifier =
        locale.find('@') == std::string::npos ? "" : locale.substr(locale.find('@'));
    const std::string territory = locale.substr(0, locale.find_first_of(".@"));
    const std::string language = territory.substr(0, territory.find('_'));
    if (language.empty() || language == "C" || language == "POSIX") {
        return {};
    }
    std::vector<std::string> names;
    const auto add = [&](const std::string& name) {
        if (!modifier.empty()) {
            names.push_back(name + modifier);
        }
        names.push_back(name);
    };
    if (territory != language) {
        add(territory);
    }
    add(language);
    return names;
}

SystemPlaces SystemPlaces::fromEnvironment() {
    SystemPlaces places;
    places.dataFolders.emplace_back(
        environmentText("XDG_DATA_HOME", environmentText("HOME", "/") + "/.local/share"));
    for (const std::string& folder :
         nonEmptyParts(environmentText("XDG_DATA_DIRS", "/usr/local/share:/usr/share"), ':')) {
        places.dataFolders.emplace_back(folder);
    }
    for (const std::string& folder :
         nonEmptyParts(environmentText("PATH", "/usr/local/bin:/usr/bin:/bin"), ':')) {
        places.programFolders.emplace_back(folder);
    }
    places.languages = userLanguages();
    return places;
}

} // namespace lumetry
