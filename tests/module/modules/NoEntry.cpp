// A library that is not a module.
extern "C" int addOne(int value) {
  return value + 1;
}
