#include <algorithm>

#include "lab/picture/CellCanvas.h"
#include "lab/picture/CellPicture.h"
#include "lab/picture/Shortened.h"

namespace vex2::lab {

namespace {

double oneColumn(std::string_view /*character*/) {
  return 1;
}

std::size_t widthOf(const std::string& text) {
  return static_cast<std::size_t>(WidthOfText(text, oneColumn));
}

// `whole` minus `part`, but not less than 0.
std::size_t rest(std::size_t whole, std::size_t part) {
  return whole - std::min(whole, part);
}

std::string padded(const std::string& text, std::size_t width) {
  const std::size_t used = widthOf(text);
  return std::string(width - std::min(width, used), ' ') + text;
}

// If `isAscii`, replaces the characters that ASCII does not have.
std::string plain(std::string text, bool isAscii) {
  if (!isAscii) return text;
  for (const auto& [from, to] : {std::pair<std::string, std::string>{"°", " deg "}, {"−", "-"}}) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from)) {
      text.replace(at, from.size(), to);
    }
  }
  std::string shown;
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte < 0x80) shown += character;
    if ((byte & 0xC0U) == 0xC0) shown += '?';
  }
  return shown;
}

class Picture {
 public:
  Picture(const Scene& scene, const CellSize& size) : scene_(scene), size_(size) {}

  CellPicture Draw() {
    if (scene_.plates.empty()) {
      drawChart();
    } else {
      for (const ScenePlate& plate : scene_.plates) drawPlate(plate);
    }
    drawLegend();
    return std::move(lines_);
  }

 private:
  void addSoft(std::string text) {
    lines_.push_back({{plain(std::move(text), size_.isAscii), {}, true}});
  }

  // Whether curves are drawn with letters: the terminal has only ASCII, or too few colours to
  // distinguish the groups.
  bool hasLetters() const {
    const std::size_t groups = scene_.legend.groups.size();
    const bool isScale = !scene_.legend.low.empty();
    return size_.isAscii || (groups > 1 && groups > size_.colours) ||
           (isScale && size_.colours == 0);
  }

  std::size_t legendLines() const { return scene_.legend.groups.empty() ? 2 : groupLines().size(); }

  void drawChart() {
    std::size_t scale = 1;
    for (const auto& [value, words] : scene_.y.ticks) scale = std::max(scale, widthOf(words));
    const std::size_t columns =
        std::max<std::size_t>(size_.width - std::min(size_.width, scale + 2), 10);
    const std::size_t others = legendLines() + 5;
    const std::size_t lines =
        std::clamp<std::size_t>(size_.height > others ? size_.height - others : 0, 8, 60);
    CellCanvas canvas(columns, lines, size_.isAscii, hasLetters());
    for (const SceneRule& rule : scene_.rules) canvas.Rule(scene_.y.ShareOf(rule.y));
    for (const SceneSeries& series : scene_.series) drawSeries(canvas, series);
    addSoft(scene_.y.label);
    const auto labels = labelsOf(lines);
    for (std::size_t line = 0; line < lines; ++line) {
      std::vector<CellRun> row = {
          {padded(labels[line], scale) + (size_.isAscii ? "|" : "│"), {}, true}};
      const auto drawn = canvas.LineAt(line);
      row.insert(row.end(), drawn.begin(), drawn.end());
      lines_.push_back(std::move(row));
    }
    drawAxis(scale, columns);
  }

  void drawSeries(CellCanvas& canvas, const SceneSeries& series) const {
    for (std::size_t i = 0; i < series.points.size(); ++i) {
      const ScenePoint& from = series.points[i > 0 && !series.isDots ? i - 1 : i];
      const ScenePoint& to = series.points[i];
      canvas.Line(scene_.x.ShareOf(from.x), scene_.y.ShareOf(from.y), scene_.x.ShareOf(to.x),
                  scene_.y.ShareOf(to.y), series.look);
    }
  }

  // The labels to the left of the lines.
  std::vector<std::string> labelsOf(std::size_t lines) const {
    std::vector<std::string> labels(lines);
    for (const auto& [value, words] : scene_.y.ticks) {
      const double share = 1 - scene_.y.ShareOf(value);
      const auto line = static_cast<std::size_t>(share * static_cast<double>(lines));
      labels[std::min(line, lines - 1)] = words;
    }
    return labels;
  }

  void drawAxis(std::size_t scale, std::size_t columns) {
    std::string rule;
    std::string numbers(scale + 1 + columns, ' ');
    const auto placeOf = [&](double value) {
      return std::min(
          static_cast<std::size_t>(scene_.x.ShareOf(value) * static_cast<double>(columns)),
          columns - 1);
    };
    std::vector<bool> isTick(columns);
    std::size_t end = 0;
    for (const auto& [value, words] : scene_.x.ticks) {
      const std::size_t place = placeOf(value);
      const std::size_t half = words.size() / 2;
      const std::size_t at = scale + 1 + place - std::min(place + scale + 1, half);
      isTick[place] = true;
      if (at < end || at + words.size() > numbers.size()) continue;
      numbers.replace(at, words.size(), words);
      end = at + words.size() + 1;
    }
    for (std::size_t column = 0; column < columns; ++column) {
      rule += size_.isAscii ? (isTick[column] ? "+" : "-") : (isTick[column] ? "┴" : "─");
    }
    addSoft(std::string(scale, ' ') + (size_.isAscii ? "+" : "└") + rule);
    numbers.erase(numbers.find_last_not_of(' ') + 1);
    addSoft(numbers);
    const std::size_t width = widthOf(scene_.x.label);
    addSoft(std::string(scale + 1 + (columns - std::min(columns, width)) / 2, ' ') +
            scene_.x.label);
    for (const SceneRule& each : scene_.rules) addSoft(std::string(scale + 1, ' ') + each.label);
  }

  void drawPlate(const ScenePlate& plate) {
    if (!plate.name.empty()) addSoft(plate.name);
    std::vector<const SceneWell*> wells(std::size_t{plate.rows} * plate.columns);
    for (const SceneWell& well : plate.wells) {
      if (well.row < plate.rows) wells[well.row * plate.columns + well.column] = &well;
    }
    const std::size_t names = RowName(plate.rows - 1).size();
    constexpr std::size_t kCell = 3;
    const auto fitting = static_cast<unsigned>(
        std::max<std::size_t>((size_.width - std::min(size_.width, names)) / kCell, 1));
    for (unsigned first = 0; first < plate.columns; first += fitting) {
      const unsigned end = std::min(first + fitting, plate.columns);
      std::string head(names, ' ');
      for (unsigned column = first; column < end; ++column) {
        head += padded(std::to_string(column + 1), kCell);
      }
      addSoft(head);
      for (unsigned row = 0; row < plate.rows; ++row) {
        std::vector<CellRun> line = {{padded(RowName(row), names), {}, true}};
        for (unsigned column = first; column < end; ++column) {
          line.push_back(cellOf(wells[row * plate.columns + column], kCell));
        }
        lines_.push_back(std::move(line));
      }
    }
  }

  CellRun cellOf(const SceneWell* well, std::size_t width) const {
    if (well == nullptr) return {padded(size_.isAscii ? "." : "·", width), {}, true};
    if (!well->text.empty()) return {padded(well->text, width), well->look, false};
    const bool hasValue = well->look.group || well->look.share;
    if (!hasValue) return {padded(size_.isAscii ? "o" : "○", width), {}, true};
    return {padded(std::string(1, LetterOf(well->look)), width), well->look, false};
  }

  // The lines of the legend. They show as many groups as there is room for, and how many others
  // there are.
  std::vector<std::vector<CellRun>> groupLines() const {
    const std::vector<std::string>& groups = scene_.legend.groups;
    const std::size_t mostLines = std::max<std::size_t>(size_.height / 3, 1);
    const std::size_t told = hasLetters() ? std::min(groups.size(), kMostLetters) : groups.size();
    std::vector<std::vector<CellRun>> lines(1);
    std::size_t used = 0;
    std::size_t next = 0;
    while (next < told) {
      const std::string name = nameOf(groups[next]);
      const bool needsMore = lines.size() == mostLines && next + 1 < groups.size();
      const std::size_t gap = used > 0 ? kGap : 0;
      const std::size_t end = used + gap + 2 + widthOf(name);
      if (end <= rest(size_.width, needsMore ? kMoreWidth : 0)) {
        addGroup(lines.back(), gap, next++, name);
        used = end;
      } else if (lines.size() < mostLines) {
        lines.emplace_back();
        used = 0;
      } else {
        break;
      }
    }
    if (next < groups.size()) {
      const std::string more = "and " + std::to_string(groups.size() - next) + " more";
      lines.back().push_back({std::string(used > 0 ? kGap : 0, ' ') + more, {}, true});
    }
    return lines;
  }

  void addGroup(std::vector<CellRun>& line, std::size_t gap, std::size_t group,
                const std::string& name) const {
    const Look look{.group = group, .share = {}};
    if (gap > 0) line.push_back({std::string(gap, ' '), {}, true});
    line.push_back({markOf(look), look, false});
    line.push_back({" " + name, {}, true});
  }

  // The name of a group, shortened if it is too long for a line.
  std::string nameOf(const std::string& group) const {
    constexpr std::size_t kMost = 40;
    const std::size_t room = std::min(kMost, rest(size_.width, kMoreWidth + 2));
    return Shortened(plain(group, size_.isAscii), static_cast<double>(room), oneColumn,
                     size_.isAscii ? "..." : "…");
  }

  static constexpr std::size_t kGap = 2;
  static constexpr std::size_t kMoreWidth = 16;  // room for " and 65535 more"

  std::string markOf(const Look& look) const {
    if (hasLetters() || !scene_.plates.empty()) return {LetterOf(look)};
    return "●";
  }

  void drawLegend() {
    if (!scene_.legend.groups.empty()) {
      for (auto& line : groupLines()) lines_.push_back(std::move(line));
      return;
    }
    if (scene_.legend.low.empty()) return;
    std::vector<CellRun> line = {{scene_.legend.title + " " + scene_.legend.low + " ", {}, true}};
    constexpr int kSteps = 10;
    for (int i = 0; i < kSteps; ++i) {
      const Look look{.group = {}, .share = i / (kSteps - 1.0)};
      line.push_back({hasLetters() ? std::string(1, LetterOf(look)) : "█", look, false});
    }
    line.push_back({" " + scene_.legend.high, {}, true});
    lines_.push_back(std::move(line));
  }

  const Scene& scene_;
  const CellSize& size_;
  CellPicture lines_;
};

}  // namespace

CellPicture CellsOf(const Scene& scene, const CellSize& size) {
  return Picture(scene, size).Draw();
}

}  // namespace vex2::lab
