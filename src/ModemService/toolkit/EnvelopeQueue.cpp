#include "EnvelopeQueue.h"

#include <utility>

#include "cat/Response.h"

namespace {

constexpr size_t MostEnvelopes = 16;

} // namespace

void EnvelopeQueue::add(std::optional<PortEnvelope> envelope)
{
    if (envelope && m_envelopes.size() < MostEnvelopes)
        m_envelopes.push_back(std::move(*envelope));
}

PortEnvelope EnvelopeQueue::take()
{
    if (m_selection) {
        m_selectionTaken = true;
        const uint8_t item = *std::exchange(m_selection, std::nullopt);
        return {cat::encodeMenuSelection(item), "MENU SELECTION", true};
    }
    PortEnvelope envelope = std::move(m_envelopes.front());
    m_envelopes.pop_front();
    return envelope;
}

bool EnvelopeQueue::dropSelection()
{
    m_selection.reset();
    return std::exchange(m_selectionTaken, false);
}
