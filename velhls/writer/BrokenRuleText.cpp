#include "velhls/writer/BrokenRuleText.h"

#include <cstddef>
#include <memory>
#include <string_view>

#include "velhls/common/Names.h"
#include "velhls/common/ReasonTable.h"
#include "velhls/common/ReasonText.h"
#include "velhls/common/TagLine.h"

namespace velhls {
namespace {

/// Empty when the record cannot be written.
template <typename Record>
std::string tagLineOf(const Record& record) {
    std::string lines;
    static_cast<void>(record.render(lines));
    return lines.substr(0, lines.find('\n'));
}

/// `render` of a key writes EXT-X-KEY.
std::string tagLineOf(const VELHLSProtectionData& sessionKey) {
    std::string asKey;
    if (sessionKey.render(asKey) != 0) return {};
    std::string line;
    appendTagStart(line, tag::sessionKey);
    return line.append(asKey, tagLength(tag::key), asKey.find('\n') - tagLength(tag::key));
}

/// Looks for one record among all that are written.
class RecordSearch {
  public:
    explicit RecordSearch(const void* wanted) : wanted_(wanted) {}

    void startRecords(std::string_view name) {
        name_ = name;
        number_ = 0;
    }

    template <typename Record>
    void meet(const std::shared_ptr<Record>& record) {
        ++number_;
        if (record == nullptr || record.get() != wanted_ || !found_.empty()) return;
        found_ = std::string(name_) + ' ' + std::to_string(number_) + ": ";
        line_ = tagLineOf(*record);
    }

    /// "variant 2: ", or nothing when no such record was met.
    [[nodiscard]] const std::string& found() const { return found_; }
    /// The tag line of the record.
    [[nodiscard]] const std::string& line() const { return line_; }

  private:
    const void* wanted_;
    std::string_view name_;
    std::size_t number_ = 0;
    std::string found_;
    std::string line_;
};

void meetAll(const VELHLSParsedManifest& manifest, RecordSearch& search) {
    search.startRecords("rendition");
    for (const auto& [type, groups] : manifest.renditions) {
        for (const auto& [groupId, group] : groups) {
            for (const auto& [name, rendition] : group)
                search.meet(rendition);
        }
    }
    search.startRecords("variant");
    for (const auto& variant : manifest.streamVariants)
        search.meet(variant);
    search.startRecords("I-frame variant");
    for (const auto& [bandwidth, variant] : manifest.variants) {
        if (variant != nullptr && variant->isIFrame) search.meet(variant);
    }
    search.startRecords("session data");
    for (const auto& entry : manifest.sessionData)
        search.meet(entry);
    search.startRecords("session key");
    for (const auto& key : manifest.sessionKeys)
        search.meet(key);
}

}  // namespace

std::string textOf(const BrokenRules& broken, const VELHLSParsedManifest& manifest) {
    if (broken.all().empty()) return "the manifest holds a null record";
    const BrokenRule& rule = broken.all().front();
    RecordSearch search(rule.record);
    if (rule.record != nullptr) meetAll(manifest, search);
    const ReasonRow row = rowOf(rule.rule);
    const std::string id = " [" + std::string(row.id) + "]";
    if (rule.record != nullptr && search.line().empty()) {
        return search.found() + std::string(row.summary) + id;
    }
    // A rule about the whole manifest has no record, and so no line.
    const bool hasLine = !search.line().empty();
    const Place place = hasLine ? placeOfAttribute(1, search.line(), rule.attribute) : Place();
    return search.found() + messageOf(search.line(), place, row.expected, rule.seen) + id;
}

}  // namespace velhls
