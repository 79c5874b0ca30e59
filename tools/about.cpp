// The texts of `fikleipa formats` and `fikleipa info`.
#include "colour.h"
#include "commands.h"
#include "conversions.h"

#include <fmt/format.h>
#include <map>

namespace fikleipa::tool {
namespace {

constexpr std::size_t kLineWidth = 100;

// "label   item, item, ..." with further lines indented to the first item.
std::string listText(std::string_view label, std::size_t indent, const std::vector<std::string>& items) {
    std::string text = fmt::format("{:<{}}", label, indent);
    std::size_t column = indent;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const std::string item = items[i] + (i + 1 < items.size() ? "," : "");
        if (column > indent && column + 1 + item.size() > kLineWidth) {
            text += fmt::format("\n{:{}}", "", indent);
            column = indent;
        }
        if (column > indent) text += ' ', ++column;
        text += item;
        column += item.size();
    }
    return text + "\n";
}

std::string layoutsText() {
    std::string text = "Layouts, with the codes and names that stand for them:\n";
    for (const Layout& layout : layouts()) {
        text += fmt::format("  {:<11}{}\n", layout.name, layout.description);
        std::vector<std::string> names;
        for (const int code : layout.codes)
            names.push_back(codeText(code) + (code == PX_FOURCC_422P ? " (source only)" : ""));
        for (const std::string_view alias : layout.aliases) names.emplace_back(alias);
        if (!names.empty()) text += listText("", 13, names);
    }
    return text;
}

std::string pairsText() {
    std::string text = "Conversions:\n";
    for (const Layout& layout : layouts()) {
        std::vector<std::string> targets;
        for (const Conversion& each : conversions()) {
            if (each.from == layout.name) targets.push_back(fmt::format("{}{}", each.to, each.note.empty() ? "" : "*"));
        }
        if (!targets.empty()) text += listText(fmt::format("  {:<10}->", layout.name), 15, targets);
    }
    std::map<std::string_view, std::vector<std::string>> notes;
    for (const Conversion& each : conversions()) {
        if (!each.note.empty()) notes[each.note].push_back(fmt::format("{} to {}", each.from, each.to));
    }
    for (const auto& [note, pairs] : notes) text += fmt::format("  * {}:\n", note) + listText("", 6, pairs);
    return text;
}

std::string coloursText() {
    std::string text = "Matrices, by name or number; any other number means 0:\n";
    for (const Matrix& matrix : matrices())
        text +=
            fmt::format("  {:<3}{:<15}{}\n", static_cast<unsigned int>(matrix.value), matrix.name, matrix.description);
    std::vector<std::string> orders;
    for (const RgbOrder& order : rgbOrders()) orders.emplace_back(order.name);
    text += listText("Orders of RGB components: ", 26, orders);
    return text +
           "  The first component comes first in memory. Without alpha abgr is bgr and argb is rgb; in the 16-bit\n"
           "  words of rgb565 and rgb555 the first of bgr or rgb has the highest bits.\n";
}

} // namespace

std::string formatsText() {
    return layoutsText() + "\n" + pairsText() + "\n" + coloursText();
}

std::string infoText() {
    std::string text = fmt::format("fikleipa {}\nprocessor level {}\n", fikleipa_version(), cycbcr_get_cpu(1));
    const char* name = nullptr;
    const char* level = nullptr;
    for (unsigned int index = 0; fikleipa_kernel(index, &name, &level) != 0; ++index)
        text += fmt::format("kernel {:<36} {}\n", name, level);
    return text;
}

} // namespace fikleipa::tool
