// A program that ends before anybody tells it to, and not well.

#include <cstdio>

int main() {
  std::puts("ends early: no, thanks");
  return 3;
}
