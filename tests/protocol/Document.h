#ifndef KELVA_TESTS_PROTOCOL_DOCUMENT_H_
#define KELVA_TESTS_PROTOCOL_DOCUMENT_H_

#include <map>
#include <string>
#include <vector>

/// One command of an example.
struct Step {
  std::string cdb;   ///< 16 bytes
  int direction;     ///< 0 none, 1 to the camera, 2 from the camera
  int size;          ///< as the host names it
  std::string data;  ///< what is sent or answered
};

/// The cells of one row of a table, trimmed and without the marks of code.
using Row = std::vector<std::string>;

/// The protocol's document, taken apart.
struct Document {
  std::map<std::string, std::vector<Step>> examples;
  std::map<std::string, std::string> records;      ///< the bytes of "request" and "result"
  std::map<std::string, std::vector<Row>> tables;  ///< by the heading of the table's first column
};

/// Reads docs/protocol.md; throws std::runtime_error for a line that it does not understand and for a second table of
/// the same heading.
Document ReadDocument();

#endif  // KELVA_TESTS_PROTOCOL_DOCUMENT_H_
