#ifndef MODEMTRAFFIC_H
#define MODEMTRAFFIC_H

#include <cstdint>
#include <optional>

#include "toolkit/ToolkitPort.h"

// A modem's toolkit traffic as the commands that it makes of it towards its card (ETSI TS 102 221
// clause 11.2), as protocol analysers know them.  The status words are the card's where the modem
// tells them, else 9000 for what it took; what it refused stands without an answer.

PortTraffic fetchOf(cat::ByteView command);
PortTraffic terminalResponseOf(const PortResponse &response, bool taken,
                               std::optional<uint16_t> status = std::nullopt);
PortTraffic envelopeOf(const PortEnvelope &envelope, cat::Bytes answer, bool taken,
                       std::optional<uint16_t> status = std::nullopt);

#endif
