// A library that is no module.
extern "C" int addOne(int value) {
  return value + 1;
}
