// Shown calculations: the files that the manual and its tests take them from.
//
// In a file calculations are parted by blank lines. Each begins with a comment that says what it is
// for; what a statement prints stands below it in lines that begin with an arrow. The first
// paragraph, a comment alone, is about the file.
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace devhost {

struct Example {
  std::string purpose;
  // As it stands in the file, results included.
  std::string text;
  // The plug-in's functions that it calls.
  std::set<std::string> functions;
};

class Examples {
 public:
  // All that are installed with the program or lie in the tree that it was built in.
  static Examples installed();

  // The one that is most about the function: whose purpose has the most words of the name, then the
  // one with the fewest functions that are rarer. Null when none calls it.
  const Example* of(const std::string& function) const;

 private:
  void add(Example example);
  std::size_t rarer_functions(const Example& example, const std::string& function) const;

  std::vector<Example> examples_;
  // How many examples each function stands in.
  std::map<std::string, std::size_t> uses_;
};

}  // namespace devhost
