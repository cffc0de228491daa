#include "CardReport.h"

#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

// A run may last for days; what was there before stays until there is something better.
CardReport::CardReport(const PlayedCard &card, std::string file)
    : m_card(card)
    , m_file(std::move(file))
{
    if (!m_file.empty() && !std::ofstream(m_file, std::ios::app))
        throw std::runtime_error(m_file + ": cannot write the report");
}

void CardReport::tellMismatches()
{
    for (; m_told < m_card.mismatches().size(); ++m_told)
        std::cerr << m_card.mismatches()[m_told] << std::endl;
}

void CardReport::write(long commands) const
{
    if (m_file.empty())
        return;
    nlohmann::ordered_json report = {{"card", m_card.file().file},
                                     {"commands", commands},
                                     {"complete", m_card.isComplete()},
                                     {"mismatches", m_card.mismatches()},
                                     {"steps", nlohmann::json::array()}};
    for (const auto &[place, count] : m_card.steps())
        report["steps"].push_back(
            {{"step", place}, {"ok", count.ok}, {"mismatches", count.mismatches}});
    std::ofstream file(m_file);
    file << report.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
    if (!file.flush())
        throw std::runtime_error(m_file + ": cannot write the report");
}

int CardReport::exitStatus(bool requireAll) const
{
    const bool complete = !requireAll || m_card.isComplete();
    if (!complete)
        std::cerr << m_card.file().file << ": not every step was played\n";
    return complete && m_card.mismatchCount() == 0 ? 0 : 1;
}
