#include <algorithm>

#include "lab/picture/CellCanvas.h"
#include "lab/picture/CellPicture.h"

namespace vex2::lab {

namespace {

// Columns of a text: its characters.
std::size_t widthOf(const std::string& text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char character) {
    return (static_cast<unsigned char>(character) & 0xC0U) != 0x80;
  }));
}

std::string padded(const std::string& text, std::size_t width) {
  const std::size_t used = widthOf(text);
  return std::string(width - std::min(width, used), ' ') + text;
}

// What has no place in ASCII.
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

  std::size_t legendLines() const { return scene_.legend.groups.empty() ? 2 : groupLines().size(); }

  void drawChart() {
    std::size_t scale = 1;
    for (const auto& [value, words] : scene_.y.ticks) scale = std::max(scale, widthOf(words));
    const std::size_t columns =
        std::max<std::size_t>(size_.width - std::min(size_.width, scale + 2), 10);
    const std::size_t others = legendLines() + 5;
    const std::size_t lines =
        std::clamp<std::size_t>(size_.height > others ? size_.height - others : 0, 8, 60);
    CellCanvas canvas(columns, lines, size_.isAscii);
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

  // The text to the left of each line.
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

  // The groups, as many on a line as there is room for.
  std::vector<std::vector<CellRun>> groupLines() const {
    std::vector<std::vector<CellRun>> lines;
    std::size_t used = 0;
    for (std::size_t i = 0; i < scene_.legend.groups.size(); ++i) {
      const Look look{.group = i, .share = {}};
      const std::string name = plain(scene_.legend.groups[i], size_.isAscii);
      const std::size_t width = 2 + widthOf(name);
      constexpr std::size_t kGap = 2;
      if (lines.empty() || used + kGap + width > size_.width) {
        lines.emplace_back();
        used = 0;
      } else {
        lines.back().push_back({std::string(kGap, ' '), {}, true});
        used += kGap;
      }
      lines.back().push_back({markOf(look), look, false});
      lines.back().push_back({" " + name, {}, true});
      used += width;
    }
    return lines;
  }

  std::string markOf(const Look& look) const {
    if (size_.isAscii || !scene_.plates.empty()) return {LetterOf(look)};
    return "●";
  }

  void drawLegend() {
    for (auto& line : groupLines()) lines_.push_back(std::move(line));
    if (!scene_.legend.groups.empty() || scene_.legend.low.empty()) return;
    std::vector<CellRun> line = {{scene_.legend.title + " " + scene_.legend.low + " ", {}, true}};
    constexpr int kSteps = 12;
    for (int i = 0; i < kSteps; ++i) {
      line.push_back(
          {size_.isAscii ? "#" : "█", {.group = {}, .share = (i + 0.5) / kSteps}, false});
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
