#include "bench/peers/peers.h"

#include <map>

namespace fikleipa::bench {
namespace {

std::multimap<std::string, Rival>& table() {
    static std::multimap<std::string, Rival> all;
    return all;
}

} // namespace

Peer::Peer(const char* name, std::initializer_list<PeerEntry> entries) {
    for (const PeerEntry& entry : entries) table().emplace(entry.converter, Rival{name, entry.convert});
}

std::vector<Rival> rivalsOf(const std::string& converter) {
    std::vector<Rival> rivals;
    const auto [first, last] = table().equal_range(converter);
    for (auto each = first; each != last; ++each) rivals.push_back(each->second);
    return rivals;
}

std::set<std::string> namesWithRivals() {
    std::set<std::string> names;
    for (const auto& [name, rival] : table()) names.insert(name);
    return names;
}

} // namespace fikleipa::bench
