#include "lab/text/Table.h"

#include <algorithm>

#include "lab/text/Columns.h"

namespace vex2::lab {

namespace {

constexpr std::size_t kGap = 2;

using Row = std::vector<std::string>;

class Table {
 public:
  Table(const Row& names, const std::vector<Row>& rows, const TextForm& form,
        const std::set<std::size_t>& numbers)
      : names_(names), rows_(rows), form_(form), numbers_(numbers) {
    widths_.resize(names.size(), 0);
    for (const Row& row : rows) {
      for (std::size_t i = 0; i < names.size(); ++i) {
        widths_[i] = std::max(widths_[i], Columns(row[i]));
      }
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
      if (widths_[i] == 0) continue;
      widths_[i] = std::max(widths_[i], Columns(names[i]));
      shown_.push_back(i);
    }
  }

  std::string Draw() const {
    if (shown_.empty()) return form_.Styled("", TextForm::Style::kBold) + '\n';
    const std::size_t width = form_.TextWidth();
    const std::vector<std::vector<std::size_t>> groups = grouped(width);
    if (groups.size() > 1 && widths_[shown_.front()] > width / 2) return stacked(width);
    std::string table;
    for (const auto& group : groups) table += (table.empty() ? "" : "\n") + side(group, width);
    return table;
  }

 private:
  // Divides the columns into groups that fit side by side. Each group begins with the first column.
  std::vector<std::vector<std::size_t>> grouped(std::size_t width) const {
    const std::size_t first = shown_.front();
    std::vector<std::vector<std::size_t>> groups = {{first}};
    std::size_t used = widths_[first];
    for (std::size_t i = 1; i < shown_.size(); ++i) {
      const std::size_t column = shown_[i];
      if (used + kGap + widths_[column] > width && groups.back().size() > 1) {
        groups.push_back({first});
        used = widths_[first];
      }
      groups.back().push_back(column);
      used += kGap + widths_[column];
    }
    return groups;
  }

  std::string side(const std::vector<std::size_t>& group, std::size_t width) const {
    std::string text = form_.Styled(line(names_, group, width), TextForm::Style::kBold) + '\n';
    for (const Row& row : rows_) text += line(row, group, width) + '\n';
    return text;
  }

  std::string line(const Row& row, const std::vector<std::size_t>& group, std::size_t width) const {
    std::string text;
    std::size_t used = 0;
    for (const std::size_t column : group) {
      const std::string& field = row[column];
      // A column can be too wide only if its group has just this column and the first one.
      if (used + widths_[column] > width && column != group.front()) {
        text += Folded(field, used, width);
      } else {
        text += numbers_.contains(column) ? PadLeft(field, widths_[column])
                                          : PadRight(field, widths_[column]);
      }
      text += std::string(kGap, ' ');
      used += widths_[column] + kGap;
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
  }

  // Draws each row as a heading with the first column, and the other columns in lines below it.
  std::string stacked(std::size_t width) const {
    std::string text;
    for (const Row& row : rows_) {
      text += form_.Styled(row[shown_.front()], TextForm::Style::kBold) + '\n';
      std::string rest;
      for (std::size_t i = 1; i < shown_.size(); ++i) {
        const std::string& field = row[shown_[i]];
        if (!field.empty()) rest += (rest.empty() ? "" : ", ") + names_[shown_[i]] + " " + field;
      }
      if (!rest.empty()) text += std::string(kGap, ' ') + Folded(rest, kGap, width) + '\n';
    }
    return text;
  }

  const Row& names_;
  const std::vector<Row>& rows_;
  const TextForm& form_;
  const std::set<std::size_t>& numbers_;
  std::vector<std::size_t> widths_;  // 0 for a column that is not shown
  std::vector<std::size_t> shown_;
};

}  // namespace

std::string DrawTable(const std::vector<std::string>& names,
                      const std::vector<std::vector<std::string>>& rows, const TextForm& form,
                      const std::set<std::size_t>& numbers) {
  return Table(names, rows, form, numbers).Draw();
}

}  // namespace vex2::lab
