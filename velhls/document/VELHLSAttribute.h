#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>

#include "velhls/common/VELHLSExport.h"

/// One attribute of a list, as it stands (RFC 8216, section 4.2). All views look into the text that was scanned.
///
///     #EXT-X-MEDIA:TYPE=AUDIO,NAME="English, 5.1",URI="en.m3u8"
///                             name   value (without its quotes; quoted is true)
///                             text: the whole of it, NAME="English, 5.1"
struct VELHLSAttribute {
    /// How an attribute breaks the grammar.
    enum Fault : std::int32_t {
        None = 0,        ///< it does not
        NameMissing,     ///< "=1", or nothing: a comma begins or ends the list, or follows another
        NameInvalid,     ///< a name with other characters than A-Z, 0-9 and "-"
        EqualsMissing,   ///< no "=" before the next comma
        ValueMissing,    ///< nothing after the "="
        WhiteSpace,      ///< before or after a name or a value, or inside of one that has no quotes
        QuoteUnclosed,   ///< no second quote in the line: the value is all that is left
        TextAfterQuote,  ///< something between the second quote and the comma
        QuoteInValue,    ///< a quote inside of a value that does not begin with one
    };

    /// All of it, from comma to comma.
    std::string_view text;
    /// Without white space around it. Empty when it is missing.
    std::string_view name;
    /// Without its quotes, or without white space around it when it has none.
    std::string_view value;
    /// The value as it is written: with its quotes.
    std::string_view writtenValue;
    /// True when the value begins with a quote.
    bool quoted = false;
    /// The first thing that breaks the grammar.
    Fault fault = None;
    /// Where that is: empty where something is missing.
    std::string_view faultText;
};

/// The attributes of one list, scanned while they are walked over: nothing is stored. The scan never fails: after what
/// breaks the grammar it goes on at the next comma. Of two attributes with one name both come.
///
///     for (const VELHLSAttribute& attribute : line.attributes()) std::cout << attribute.name << "\n";
class VELHLS_CHECK_API VELHLSAttributes {
  public:
    /// Goes from one attribute to the next.
    class VELHLS_CHECK_API Iterator {
      public:
        /// @cond
        using iterator_category = std::forward_iterator_tag;
        using value_type = VELHLSAttribute;
        using difference_type = std::ptrdiff_t;
        using pointer = const VELHLSAttribute*;
        using reference = const VELHLSAttribute&;
        /// @endcond

        /// After the last attribute of any list.
        Iterator() = default;

        /// At the first attribute of the list.
        explicit Iterator(std::string_view list) : rest_(list), ended_(list.empty()) {
            if (!ended_) scan();
        }

        /// The attribute.
        [[nodiscard]] const VELHLSAttribute& operator*() const { return attribute_; }
        /// The attribute.
        [[nodiscard]] const VELHLSAttribute* operator->() const { return &attribute_; }
        /// Goes on to the next one.
        Iterator& operator++() {
            ended_ = isLast_;
            if (!ended_) scan();
            return *this;
        }
        /// True of two iterators after the last attribute, and of two at the same one.
        [[nodiscard]] bool operator==(const Iterator& other) const {
            if (ended_ || other.ended_) return ended_ == other.ended_;
            return attribute_.text.data() == other.attribute_.text.data();
        }
        /// The opposite.
        [[nodiscard]] bool operator!=(const Iterator& other) const { return !(*this == other); }

      private:
        void scan();
        VELHLS_HIDDEN void scanOddName();
        VELHLS_HIDDEN void scanValue();
        VELHLS_HIDDEN void scanQuoted();
        VELHLS_HIDDEN void scanBare();
        VELHLS_HIDDEN void fail(VELHLSAttribute::Fault fault, std::string_view place);

        std::string_view rest_;
        bool ended_ = true;
        bool isLast_ = true;
        VELHLSAttribute attribute_;
    };

    /// The list: what follows the colon of a tag. An empty one has no attributes.
    explicit VELHLSAttributes(std::string_view list) : list_(list) {}

    /// At the first attribute.
    [[nodiscard]] Iterator begin() const { return Iterator(list_); }
    /// After the last attribute.
    [[nodiscard]] Iterator end() const { return {}; }

    /// The first attribute with this name, if there is one.
    [[nodiscard]] std::optional<VELHLSAttribute> find(std::string_view name) const;

    /// The list as it stands.
    [[nodiscard]] std::string_view text() const { return list_; }

  private:
    std::string_view list_;
};
