#include "TextBuilder.h"

#include <utility>

#include "Text.h"

namespace cat {

namespace {

constexpr char16_t Unknown = u'\ufffd';

bool isLead(char16_t unit)
{
    return unit >= 0xd800 && unit < 0xdc00;
}

bool isTrail(char16_t unit)
{
    return unit >= 0xdc00 && unit < 0xe000;
}

} // namespace

void TextBuilder::addOther(char16_t unit)
{
    const char16_t lead = std::exchange(m_lead, u'\0');
    if (lead && isTrail(unit)) {
        appendUtf8(m_text, 0x10000 + (char32_t(lead & 0x3ff) << 10) + (unit & 0x3ff));
        return;
    }
    if (lead)
        appendUtf8(m_text, Unknown);
    if (isLead(unit))
        m_lead = unit;
    else
        appendUtf8(m_text, unit == 0 || isTrail(unit) ? Unknown : unit);
}

std::string TextBuilder::take()
{
    if (std::exchange(m_lead, u'\0'))
        appendUtf8(m_text, Unknown);
    return std::move(m_text);
}

} // namespace cat
