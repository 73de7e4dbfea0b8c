#include "tests/protocol/Document.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace {

constexpr const char* kFence = "```";
constexpr const char* kExample = "```exchange ";

/// A cell without the marks of code and the spaces around it.
std::string Plain(std::string text) {
  std::erase(text, '`');
  const auto start = text.find_first_not_of(' ');
  const auto end = text.find_last_not_of(' ');
  return start == std::string::npos ? "" : text.substr(start, end - start + 1);
}

std::string Bytes(std::istream& words) {
  std::string bytes;
  std::size_t length = 0;
  for (std::string word; words >> word;) {
    if (word.back() == ':') {
      length = std::stoul(word);
    } else {
      bytes += static_cast<char>(std::stoi(word, nullptr, 16));
    }
  }
  bytes.resize(std::max(bytes.size(), length));
  return bytes;
}

void AddLine(std::vector<Step>& steps, const std::string& line) {
  std::istringstream words(line);
  std::string kind;
  words >> kind;
  if (kind == "cdb") {
    steps.push_back({Bytes(words), -1, 0, ""});
    return;
  }
  if (steps.empty() || (kind != "none" && kind != "in" && kind != "out")) {
    throw std::runtime_error("not a line of an example: " + line);
  }
  Step& step = steps.back();
  step.direction = kind == "none" ? 0 : kind == "out" ? 1 : 2;
  if (step.direction != 1) words >> step.size;
  step.data = Bytes(words);
  if (step.direction == 1) step.size = static_cast<int>(step.data.size());
}

/// Takes a line that is a record of the kernel's driver; false for any other.
bool AddRecord(std::map<std::string, std::string>& records, const std::string& line) {
  std::istringstream words(line);
  std::string kind;
  words >> kind;
  if (kind != "request" && kind != "result") return false;
  if (!records.emplace(kind, Bytes(words)).second) throw std::runtime_error("a second record: " + line);
  return true;
}

Row Cells(const std::string& line) {
  Row row;
  std::istringstream cells(line.substr(1));
  for (std::string cell; std::getline(cells, cell, '|');) row.push_back(Plain(cell));
  return row;
}

std::vector<Row>& NewTable(std::map<std::string, std::vector<Row>>& tables, const std::string& heading) {
  const auto [table, isNew] = tables.emplace(heading, std::vector<Row>{});
  if (!isNew) throw std::runtime_error("two tables begin with the heading " + heading);
  return table->second;
}

}  // namespace

Document ReadDocument() {
  std::ifstream file(KELVA_PROTOCOL_DOCUMENT);
  if (!file) throw std::runtime_error("cannot read " KELVA_PROTOCOL_DOCUMENT);
  Document document;
  std::string example;
  std::vector<Row>* table = nullptr;
  for (std::string line; std::getline(file, line);) {
    if (line.rfind(kExample, 0) == 0) {
      example = line.substr(std::string(kExample).size());
    } else if (line == kFence) {
      example.clear();
    } else if (!example.empty()) {
      if (!AddRecord(document.records, line)) AddLine(document.examples[example], line);
    } else if (line.rfind("|---", 0) == 0) {
      continue;
    } else if (line.rfind('|', 0) == 0 && table == nullptr) {
      table = &NewTable(document.tables, Cells(line)[0]);
    } else if (line.rfind('|', 0) == 0) {
      table->push_back(Cells(line));
    } else {
      table = nullptr;
    }
  }
  return document;
}
