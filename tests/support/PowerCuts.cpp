#include "tests/support/PowerCuts.h"

#include <algorithm>

namespace vex2::test {
namespace {

void replay(Bytes& content, const DiskStep& step) {
  if (step.kind == DiskStep::resize) {
    content.resize(step.offset);
    return;
  }
  content.resize(std::max<std::uint64_t>(content.size(), step.offset + step.bytes.size()));
  std::copy(step.bytes.begin(), step.bytes.end(),
            content.begin() + static_cast<std::ptrdiff_t>(step.offset));
}

}  // namespace

void PowerCuts::Visit(const Visitor& visitor) {
  visitor_ = &visitor;
  visitPoint();
  for (const DiskStep& step : log_) {
    apply(step);
    visitPoint();
  }
}

void PowerCuts::apply(const DiskStep& step) {
  switch (step.kind) {
    case DiskStep::write:
    case DiskStep::resize:
      unsynced_[step.node].push_back(&step);
      break;
    case DiskStep::name:
      if (step.path == path_) unsyncedNames_.push_back(step.node);
      break;
    case DiskStep::sync:
      if (!isIgnored()) settle(step.node);
      break;
    case DiskStep::syncFolder:
      if (isIgnored() || unsyncedNames_.empty()) break;
      syncedName_ = unsyncedNames_.back();
      unsyncedNames_.clear();
      break;
    case DiskStep::mark:
      ++returned_;
      barriers_ = 0;
      break;
  }
}

bool PowerCuts::isIgnored() {
  return barriers_++ == ignored_ && returned_ >= ignoredFrom_;
}

void PowerCuts::settle(int node) {
  for (const DiskStep* step : unsynced_[node]) replay(synced_[node], *step);
  unsynced_[node].clear();
}

void PowerCuts::visitPoint() {
  ++points_;
  std::set<int> nodes(unsyncedNames_.begin(), unsyncedNames_.end());
  nodes.insert(syncedName_);
  for (const int node : nodes) {
    if (node == 0) {
      tell({});
    } else {
      visitFile(node);
    }
  }
}

void PowerCuts::visitFile(int node) {
  const std::vector<Piece> pieces = piecesOf(node);
  for (const std::uint64_t length : lengthsOf(node)) visitLength(synced_[node], pieces, length);
}

std::vector<PowerCuts::Piece> PowerCuts::piecesOf(int node) const {
  std::vector<Piece> pieces;
  const auto synced = synced_.find(node);
  const std::uint64_t length = synced != synced_.end() ? synced->second.size() : 0;
  const auto steps = unsynced_.find(node);
  if (steps == unsynced_.end()) return pieces;
  for (const DiskStep* step : steps->second) {
    const std::uint64_t end = step->offset + step->bytes.size();
    for (std::uint64_t at = step->offset; step->kind == DiskStep::write && at < end;) {
      std::uint64_t next = std::min((at / kSector + 1) * kSector, end);
      if (at < length) next = std::min(next, length);
      pieces.push_back({at, next - at, step->bytes.data() + (at - step->offset), at >= length});
      at = next;
    }
  }
  return pieces;
}

std::set<std::uint64_t> PowerCuts::lengthsOf(int node) const {
  const auto synced = synced_.find(node);
  std::uint64_t length = synced != synced_.end() ? synced->second.size() : 0;
  std::set<std::uint64_t> lengths{length};
  const auto steps = unsynced_.find(node);
  if (steps == unsynced_.end()) return lengths;
  for (const DiskStep* step : steps->second) {
    const std::uint64_t before = length;
    length = step->kind == DiskStep::resize
                 ? step->offset
                 : std::max<std::uint64_t>(length, step->offset + step->bytes.size());
    for (auto at = (before / kSector + 1) * kSector; at < length; at += kSector) lengths.insert(at);
    lengths.insert(length);
  }
  return lengths;
}

void PowerCuts::visitLength(const Bytes& synced, const std::vector<Piece>& pieces,
                            std::uint64_t length) {
  std::vector<Piece> inside;
  std::uint64_t total = 1;
  for (Piece piece : pieces) {
    if (piece.offset >= length) continue;
    piece.count = std::min(piece.count, length - piece.offset);
    inside.push_back(piece);
    if (total <= mostStates_) total *= piece.isNew ? 3 : 2;
  }
  const bool all = total <= mostStates_;
  Bytes content;
  for (std::uint64_t state = 0; state < (all ? total : mostStates_); ++state) {
    content = synced;
    content.resize(length);
    std::uint64_t choice = state;
    for (const Piece& piece : inside) {
      const unsigned outcomes = piece.isNew ? 3 : 2;
      // In a random selection, the first state has all pieces and the second has none.
      const std::uint64_t drawn = all ? choice : state < 2 ? state : random_();
      put(content, piece, static_cast<unsigned>(drawn % outcomes));
      choice /= outcomes;
    }
    tell(content);
  }
}

void PowerCuts::put(Bytes& content, const Piece& piece, unsigned outcome) {
  const auto to = content.begin() + static_cast<std::ptrdiff_t>(piece.offset);
  const auto count = static_cast<std::ptrdiff_t>(piece.count);
  if (outcome == 0) std::copy_n(piece.bytes, piece.count, to);
  if (outcome == 2) {
    std::generate(to, to + count, [this] { return static_cast<std::uint8_t>(random_()); });
  }
}

void PowerCuts::tell(const std::optional<Bytes>& content) {
  ++states_;
  (*visitor_)(content, returned_);
}

}  // namespace vex2::test
