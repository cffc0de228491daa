#ifndef CAT_TEXTBUILDER_H
#define CAT_TEXTBUILDER_H

#include <cstddef>
#include <string>

namespace cat {

/// Makes text of UTF-16 code units, one after another: well-formed UTF-8 without a zero, with
/// U+FFFD for what is no character.
class TextBuilder {
public:
    /// `bytes` is how long the text will be, as far as can be said.
    explicit TextBuilder(size_t bytes) { m_text.reserve(bytes); }

    void add(char16_t unit)
    {
        const bool plain = unit != 0 && unit < 0x80 && m_lead == 0;
        if (plain)
            m_text += char(unit);
        else
            addOther(unit);
    }
    std::string take();

private:
    void addOther(char16_t unit);

    std::string m_text;
    char16_t m_lead = 0; // first half of a surrogate pair
};

} // namespace cat

#endif
