#pragma once

namespace vex2::test {

/// A `Base` that counts its living objects, separately for each `Base`.
template <class Base>
class Counted : public Base {
 public:
  Counted() { ++living; }
  ~Counted() override { --living; }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

  static inline int living = 0;
};

}  // namespace vex2::test
