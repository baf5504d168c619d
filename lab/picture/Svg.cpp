#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "lab/picture/Palette.h"
#include "lab/picture/PlotScene.h"
#include "lab/picture/Shortened.h"

namespace vex2::lab {

namespace {

constexpr double kWidth = 960;
constexpr double kHeight = 600;
constexpr double kLegendWidth = 210;
constexpr double kTop = 48;
constexpr double kLetters = 13;  // font size, which is also in the head of the SVG
constexpr double kTitle = 17;
constexpr double kCapital = 0.72;  // height of a capital letter or digit, of the size
constexpr double kBold = 1.1;      // width of bold letters relative to normal ones
constexpr std::string_view kInk = "#1a2027";
constexpr std::string_view kSoft = "#55606c";
constexpr std::string_view kGrid = "#e3e7eb";
constexpr std::string_view kNone = "#9aa4ae";
constexpr std::array<std::string_view, 4> kDashes = {"", "7 4", "2 3", "10 3 2 3"};

struct Box {
  double left = 0;
  double top = 0;
  double right = 0;
  double bottom = 0;
};

std::string number(double value) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.2f", value);
  std::string shown = text.data();
  shown.erase(shown.find_last_not_of('0') + 1);
  if (shown.back() == '.') shown.pop_back();
  return shown == "-0" ? "0" : shown;
}

// Escapes a text of a document for XML, and replaces characters that XML does not allow.
std::string escaped(std::string_view text) {
  std::string shown;
  for (const char character : text) {
    switch (character) {
      case '&':
        shown += "&amp;";
        break;
      case '<':
        shown += "&lt;";
        break;
      case '>':
        shown += "&gt;";
        break;
      case '"':
        shown += "&quot;";
        break;
      default:
        if (static_cast<unsigned char>(character) >= 0x20) shown += character;
    }
  }
  return shown;
}

std::string mixed(std::string_view low, std::string_view high, double share) {
  std::string colour = "#";
  for (std::size_t i = 1; i < 7; i += 2) {
    const auto part = [&](std::string_view of) {
      return std::stoi(std::string(of.substr(i, 2)), nullptr, 16);
    };
    std::array<char, 8> text{};
    const double value = part(low) + (part(high) - part(low)) * share;
    std::snprintf(text.data(), text.size(), "%02x", static_cast<unsigned>(std::lround(value)));
    colour += text.data();
  }
  return colour;
}

std::string colourOf(const Look& look, std::string_view none) {
  if (look.group) return std::string(Palette::kLight[*look.group % Palette::kLight.size()]);
  if (!look.share) return std::string(none);
  const auto& scale = Palette::kScaleLight;
  const double place = std::clamp(*look.share, 0.0, 1.0) * static_cast<double>(scale.size() - 1);
  const std::size_t index = std::min(static_cast<std::size_t>(place), scale.size() - 2);
  return mixed(scale[index], scale[index + 1], place - static_cast<double>(index));
}

// The width of a character as a fraction of the font size, in the widest typeface that may be used.
double widthOf(std::string_view character) {
  constexpr std::string_view kNarrow = "ijl.,:;|'!It()[]f /";
  constexpr std::string_view kWide = "mwMW@%";
  if (character.size() > 2) return 1;
  if (kNarrow.find(character) != std::string_view::npos) return 0.42;
  if (kWide.find(character) != std::string_view::npos) return 1;
  const bool isCapital = character[0] >= 'A' && character[0] <= 'Z';
  return isCapital || character.size() > 1 ? 0.74 : 0.64;
}

// `words` shortened to the width `room` at the font size `size`.
std::string cut(const std::string& words, double room, double size) {
  return Shortened(words, room / size, widthOf, "…");
}

// The colours repeat if there are more groups than colours. Returns which repetition the group is
// in; each has other marks and dashes.
std::size_t roundOf(const Look& look) {
  return look.group.value_or(0) / Palette::kLight.size() % kDashes.size();
}

class Drawing {
 public:
  explicit Drawing(const Scene& scene) : scene_(scene) {}

  std::string Draw() {
    out_ =
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"960\" height=\"600\" "
        "viewBox=\"0 0 960 600\" font-family=\"Helvetica, Arial, 'DejaVu Sans', sans-serif\" "
        "font-size=\"13\">\n<title>" +
        escaped(scene_.title) + "</title>\n<rect width=\"960\" height=\"600\" fill=\"#ffffff\"/>\n";
    text(24, 28, cut(scene_.title, kWidth - 48, kTitle * kBold), kInk, "start",
         "font-size=\"" + number(kTitle) + "\" font-weight=\"bold\"");
    const bool hasLegend = !scene_.legend.groups.empty() || !scene_.legend.low.empty();
    const double right = kWidth - (hasLegend ? kLegendWidth : 24);
    if (scene_.plates.empty()) {
      drawChart({78, kTop, right, kHeight - 56});
    } else {
      drawPlates({24, kTop, right, kHeight - 20});
    }
    if (hasLegend) drawLegend(right + 20);
    return out_ + "</svg>\n";
  }

 private:
  void text(double x, double y, const std::string& words, std::string_view colour,
            std::string_view anchor, const std::string& more = "") {
    out_ += "<text x=\"" + number(x) + "\" y=\"" + number(y) + "\" fill=\"";
    out_.append(colour).append("\" text-anchor=\"").append(anchor).append("\" ").append(more);
    out_ += ">" + escaped(words) + "</text>\n";
  }

  void line(double x1, double y1, double x2, double y2, std::string_view colour,
            const std::string& more = "") {
    out_ += "<line x1=\"" + number(x1) + "\" y1=\"" + number(y1) + "\" x2=\"" + number(x2) +
            "\" y2=\"" + number(y2) + "\" stroke=\"";
    out_.append(colour).append("\" ").append(more).append("/>\n");
  }

  // Draws the mark of a well, of a dot or in the legend.
  void mark(double x, double y, double radius, const Look& look) {
    const std::string colour = colourOf(look, kNone);
    const std::string circle = "<circle cx=\"" + number(x) + "\" cy=\"" + number(y) + "\" r=\"";
    const bool hasValue = look.group || look.share;
    if (!hasValue) {
      out_ += circle + number(radius * 0.9) + "\" fill=\"none\" stroke=\"" + colour + "\"/>\n";
    } else if (roundOf(look) == 1) {
      out_ += circle + number(radius * 0.74) + "\" fill=\"none\" stroke=\"" + colour +
              "\" stroke-width=\"" + number(radius * 0.52) + "\"/>\n";
    } else if (roundOf(look) == 3) {
      out_ += "<rect x=\"" + number(x - radius * 0.82) + "\" y=\"" + number(y - radius * 0.82) +
              "\" width=\"" + number(radius * 1.64) + "\" height=\"" + number(radius * 1.64) +
              "\" fill=\"" + colour + "\"/>\n";
    } else {
      out_ += circle + number(radius) + "\" fill=\"" + colour + "\"/>\n";
      if (roundOf(look) == 2) out_ += circle + number(radius * 0.36) + "\" fill=\"#ffffff\"/>\n";
    }
  }

  void drawChart(const Box& box) {
    const auto x = [&](double value) {
      return box.left + scene_.x.ShareOf(value) * (box.right - box.left);
    };
    const auto y = [&](double value) {
      return box.bottom - scene_.y.ShareOf(value) * (box.bottom - box.top);
    };
    for (const auto& [value, words] : scene_.x.ticks) {
      line(x(value), box.top, x(value), box.bottom, kGrid);
      text(x(value), box.bottom + 20, words, kSoft, "middle");
    }
    for (const auto& [value, words] : scene_.y.ticks) {
      line(box.left, y(value), box.right, y(value), kGrid);
      text(box.left - 9, y(value) + 4.5, words, kSoft, "end");
    }
    text((box.left + box.right) / 2, box.bottom + 44, scene_.x.label, kSoft, "middle");
    out_ +=
        "<g transform=\"translate(22 " + number((box.top + box.bottom) / 2) + ") rotate(-90)\">";
    text(0, 0, scene_.y.label, kSoft, "middle");
    out_ += "</g>\n";
    for (const SceneRule& rule : scene_.rules) {
      line(box.left, y(rule.y), box.right, y(rule.y), "#a3231b",
           "stroke-width=\"1.5\" stroke-dasharray=\"6 4\"");
      text(box.left + 6, y(rule.y) - 6, rule.label, "#a3231b", "start");
    }
    for (const SceneSeries& series : scene_.series) {
      if (series.isDots) {
        for (const ScenePoint& point : series.points)
          mark(x(point.x), y(point.y), 4.5, series.look);
      } else {
        curve(series, x, y);
      }
    }
  }

  template <typename X, typename Y>
  void curve(const SceneSeries& series, const X& x, const Y& y) {
    if (series.points.size() == 1) {
      return mark(x(series.points[0].x), y(series.points[0].y), 3, series.look);
    }
    out_ += "<polyline fill=\"none\" stroke-linejoin=\"round\" stroke-width=\"" +
            std::string(scene_.series.size() > 150 ? "1\" stroke-opacity=\"0.8" : "1.6") +
            "\" stroke=\"" + colourOf(series.look, kNone) + "\"" + dashesOf(series.look) +
            " points=\"";
    for (const ScenePoint& point : series.points) {
      out_ += number(x(point.x)) + "," + number(y(point.y)) + " ";
    }
    out_.back() = '"';
    out_ += "/>\n";
  }

  void drawPlates(const Box& box) {
    const std::size_t count = scene_.plates.size();
    const auto across = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(count))));
    const std::size_t down = (count + across - 1) / across;
    const double width = (box.right - box.left) / static_cast<double>(across);
    const double height = (box.bottom - box.top) / static_cast<double>(down);
    for (std::size_t i = 0; i < count; ++i) {
      const double left = box.left + width * static_cast<double>(i % across);
      const double top = box.top + height * static_cast<double>(i / across);
      drawPlate(scene_.plates[i], {left, top, left + width - 12, top + height - 12});
    }
  }

  void drawPlate(const ScenePlate& plate, Box box) {
    if (!plate.name.empty()) {
      text(box.left, box.top + 4, cut(plate.name, box.right - box.left, kLetters * kBold), kInk,
           "start", "font-weight=\"bold\"");
      box.top += 16;
    }
    const double pitch = std::min((box.right - box.left) / (plate.columns + 1.2),
                                  (box.bottom - box.top) / (plate.rows + 1.2));
    const double left = box.left + pitch * 1.2;
    const double top = box.top + pitch * 1.2;
    const double letters = std::clamp(pitch * 0.5, 4.0, 13.0);
    const double middle = letters * kCapital / 2;  // from the middle of a row to its base line
    const std::string size = "font-size=\"" + number(letters) + "\"";
    for (unsigned column = 0; column < plate.columns; ++column) {
      text(left + pitch * (column + 0.5), top - pitch * 0.25, std::to_string(column + 1), kSoft,
           "middle", size);
    }
    for (unsigned row = 0; row < plate.rows; ++row) {
      text(left - pitch * 0.6, top + pitch * (row + 0.5) + middle, RowName(row), kSoft, "middle",
           size);
    }
    drawEmptyWells(plate, left, top, pitch);
    for (const SceneWell& well : plate.wells) {
      if (well.row >= plate.rows) continue;
      const double x = left + pitch * (well.column + 0.5);
      const double y = top + pitch * (well.row + 0.5);
      mark(x, y, pitch * 0.42, well.look);
      if (well.text.empty() || pitch < 14) continue;
      const bool isLight = well.look.share.value_or(0) > 0.6;
      text(x, y + middle, well.text, isLight ? kInk : "#ffffff", "middle", size);
    }
  }

  void drawEmptyWells(const ScenePlate& plate, double left, double top, double pitch) {
    std::vector<bool> isUsed(std::size_t{plate.rows} * plate.columns);
    for (const SceneWell& well : plate.wells) {
      if (well.row < plate.rows) isUsed[well.row * plate.columns + well.column] = true;
    }
    for (std::size_t i = 0; i < isUsed.size(); ++i) {
      if (isUsed[i]) continue;
      out_ += "<circle cx=\"" +
              number(left + pitch * (static_cast<double>(i % plate.columns) + 0.5)) + "\" cy=\"" +
              number(top + pitch * (static_cast<double>(i / plate.columns) + 0.5)) + "\" r=\"" +
              number(pitch * 0.09) + "\" fill=\"#c3cad1\"/>\n";
    }
  }

  void drawLegend(double left) {
    const SceneLegend& legend = scene_.legend;
    text(left, kTop + 4, legend.title, kSoft, "start");
    if (legend.groups.empty()) return drawScale(left);
    constexpr std::size_t kMost = 26;
    constexpr double kLine = 19.5;
    const std::size_t shown = legend.groups.size() > kMost ? kMost - 1 : legend.groups.size();
    const bool isOfCurves = hasCurves();
    const double name = left + (isOfCurves ? 36 : 19);
    double y = kTop + 24;
    for (std::size_t i = 0; i < shown; ++i, y += kLine) {
      const Look look{.group = i, .share = {}};
      if (isOfCurves) {
        line(left, y, left + 28, y, colourOf(look, kNone), "stroke-width=\"2.4\"" + dashesOf(look));
      } else {
        mark(left + 6, y, 5.5, look);
      }
      text(name, y + 4.5, cut(legend.groups[i], kWidth - 6 - name, kLetters), kInk, "start");
    }
    if (shown < legend.groups.size()) {
      text(left, y + 4.5, "and " + std::to_string(legend.groups.size() - shown) + " more", kSoft,
           "start");
    }
  }

  // Whether groups are shown as lines. Standards are dots beside their line.
  bool hasCurves() const {
    const auto isDots = [](const SceneSeries& series) { return series.isDots; };
    return !scene_.series.empty() &&
           std::none_of(scene_.series.begin(), scene_.series.end(), isDots);
  }

  // The attribute that sets the dashes of a line.
  static std::string dashesOf(const Look& look) {
    if (roundOf(look) == 0) return "";
    return " stroke-dasharray=\"" + std::string(kDashes[roundOf(look)]) + "\"";
  }

  void drawScale(double left) {
    constexpr double kBar = 220;
    constexpr int kSteps = 44;
    for (int i = 0; i < kSteps; ++i) {
      const double share = (i + 0.5) / kSteps;
      out_ += "<rect x=\"" + number(left) + "\" y=\"" +
              number(kTop + 20 + kBar * (1 - share) - kBar / kSteps / 2) +
              "\" width=\"16\" height=\"" + number(kBar / kSteps + 0.5) + "\" fill=\"" +
              colourOf({.group = {}, .share = share}, kNone) + "\"/>\n";
    }
    text(left + 24, kTop + 30, scene_.legend.high, kInk, "start");
    text(left + 24, kTop + 20 + kBar, scene_.legend.low, kInk, "start");
    mark(left + 8, kTop + 46 + kBar, 6, {});
    text(left + 24, kTop + 50 + kBar, "none", kSoft, "start");
  }

  const Scene& scene_;
  std::string out_;
};

}  // namespace

std::string SvgOf(const Scene& scene) {
  return Drawing(scene).Draw();
}

std::string PlotSvg(const RunReader& run, const PlotOptions& options) {
  return SvgOf(SceneOf(run, options));
}

}  // namespace vex2::lab
