#include "bench/harness/Results.h"

#include <cstdio>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace zerva::bench {

namespace {

std::string number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", value);
  return text;
}

std::string quoted(const std::string& text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') result += '\\';
    result += c;
  }
  return result + "\"";
}

std::string list(const Rounds& rounds) {
  std::string text;
  for (const double value : rounds) text += (text.empty() ? "" : ", ") + number(value);
  return "[" + text + "]";
}

void write(std::ostream& out, const Row& row) {
  out << "{\"name\": " << quoted(row.name) << ", \"x\": " << number(row.x) << ", \"sides\": [";
  const char* comma = "";
  for (const Cell& cell : row.cells) {
    out << comma << "\n        {\"name\": " << quoted(cell.side)
        << ", \"rounds\": " << list(cell.rounds) << "}";
    comma = ",";
  }
  out << "]}";
}

void write(std::ostream& out, const Table& table) {
  out << "{\"id\": " << quoted(table.id) << ", \"title\": " << quoted(table.title)
      << ", \"unit\": " << quoted(table.unit) << ", \"along\": " << quoted(table.along)
      << ", \"rows\": [";
  const char* comma = "";
  for (const Row& row : table.rows) {
    out << comma << "\n      ";
    write(out, row);
    comma = ",";
  }
  out << "]}";
}

void write(std::ostream& out, const Aim& aim) {
  out << "{\"name\": " << quoted(aim.name) << ", \"figure\": " << number(median(aim.figure))
      << ", \"rounds\": " << list(aim.figure)
      << ", \"limit\": " << quoted(aim.limit == Aim::Limit::AtMost ? "at most" : "at least")
      << ", \"value\": " << number(aim.value) << ", \"unit\": " << quoted(aim.unit)
      << ", \"met\": " << (aim.met() ? "true" : "false") << "}";
}

template <typename Items>
void writeList(std::ostream& out, const Items& items) {
  const char* comma = "";
  for (const auto& item : items) {
    out << comma << "\n    ";
    write(out, item);
    comma = ",";
  }
}

/** @returns a figure as people read it: three digits that count. */
std::string readable(double value, const std::string& unit) {
  char text[32];
  const double size = value < 0 ? -value : value;
  const int decimals = size >= 1000 ? 0 : size >= 100 ? 0 : size >= 10 ? 1 : 2;
  std::snprintf(text, sizeof text, "%.*f", decimals, value);
  return text + (unit.empty() ? "" : " " + unit);
}

}  // namespace

void Table::add(const std::string& name, const std::vector<Cell>& cells, double x) {
  for (Row& row : rows) {
    if (row.name != name) continue;
    row.cells.insert(row.cells.end(), cells.begin(), cells.end());
    return;
  }
  rows.push_back({name, x, cells});
}

bool Aim::met() const {
  const double measured = median(figure);
  return limit == Limit::AtMost ? measured <= value : measured >= value;
}

std::string Aim::line() const {
  std::string bound = number(value);
  if (!unit.empty()) bound += " " + unit;
  return "aim: " + name + ": " + readable(median(figure), unit) +
         (limit == Limit::AtMost ? " (at most " : " (at least ") + bound +
         "): " + (met() ? "met" : "missed");
}

Table& Results::table(const std::string& id, const std::string& title, const std::string& unit,
                      const std::string& along) {
  for (Table& table : tables_) {
    if (table.id == id) return table;
  }
  tables_.push_back({id, title, unit, along, {}});
  return tables_.back();
}

const Aim& Results::add(Aim aim) {
  aims_.push_back(std::move(aim));
  return aims_.back();
}

void Results::writeJson(const std::string& path) const {
  std::ostringstream out;
  out << "{\n  \"bits\": " << sizeof(void*) * 8 << ",\n  \"compiler\": " << quoted(__VERSION__)
      << ",\n  \"tables\": [";
  writeList(out, tables_);
  out << "],\n  \"aims\": [";
  writeList(out, aims_);
  out << "]\n}\n";
  std::ofstream file(path);
  file << out.str();
  file.close();
  if (!file) throw std::runtime_error("cannot write " + path);
}

}  // namespace zerva::bench
