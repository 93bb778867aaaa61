#include "report/preview/view_model.h"

#include <glib.h>

#include <memory>

namespace vantorel::report::preview {
namespace {

struct GFree {
  void operator()(char* text) const { g_free(text); }
};
using GText = std::unique_ptr<char, GFree>;

// "text" folded for caseless comparison: composed first, so "e" with a combining accent and
// "é" compare equal, then case folded.
std::string Fold(std::string_view text) {
  if (!g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr)) {
    return std::string(text);  // not UTF-8: compare the bytes as they are
  }
  GText composed(
      g_utf8_normalize(text.data(), static_cast<gssize>(text.size()), G_NORMALIZE_ALL_COMPOSE));
  if (composed == nullptr) return std::string(text);
  GText folded(g_utf8_casefold(composed.get(), -1));
  return folded != nullptr ? std::string(folded.get()) : std::string(text);
}

void FindInItems(const std::vector<Item>& items, size_t page, const std::string& needle,
                 std::vector<Match>& matches) {
  for (const Item& item : items) {
    if (const auto* text = std::get_if<TextItem>(&item)) {
      if (Fold(text->text).find(needle) != std::string::npos) matches.push_back({page, text->box});
    } else if (const auto* group = std::get_if<GroupItem>(&item)) {
      FindInItems(group->items, page, needle, matches);
    }
  }
}

}  // namespace

std::vector<Match> FindText(const Document& document, std::string_view needle) {
  std::vector<Match> matches;
  if (needle.empty()) return matches;
  const std::string folded = Fold(needle);
  for (size_t page = 0; page < document.pages.size(); ++page) {
    FindInItems(document.pages[page].items, page, folded, matches);
  }
  return matches;
}

size_t FirstMatchFrom(const std::vector<Match>& matches, size_t page) {
  for (size_t i = 0; i < matches.size(); ++i) {
    if (matches[i].page >= page) return i;
  }
  return 0;
}

}  // namespace vantorel::report::preview
