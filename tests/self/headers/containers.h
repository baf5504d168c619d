// A faulty sample for the check of private containers, which must find exactly the marked lines.
// This file is not compiled.
#pragma once

#include <vector>  // not a member: std::vector

template <class Value>
class Sample {
  std::vector<Value> atOnce_;  // found

 public:
  explicit Sample(std::vector<Value> values) : atOnce_(std::move(values)) {}
  const std::vector<Value>& Values() const { return atOnce_; }
  struct Record {
    std::vector<int> handedOut;
  };
  enum class Kind { one, two };

 protected:
  std::map<int, int> forSubclasses();

 private:
  struct Node {
    std::array<char, 4> tag;  // found
  };
  void count() const {
    const std::set<int> counted;  // found
  }
  std::unique_ptr<Node> node_;  // std::list<Node> it was
  std::map<CString,             // found
           std::unique_ptr<Node>>
      nodes_;
};

struct Open {
  std::vector<int> everybodySees;

 private:
  std::unique_ptr<std::list<int>> hidden_;  // found
};

std::vector<int> OutsideOfClasses();
