// What the debugger test looks at.
#include "zel/base/array.h"

int main() {
  const zel::TDouble2DArray columns{{1, 2, 3}, {4, 5, 6}};
  const zel::TInt3DArray cube{{{1, 2}}, {{3, 4}}};
  const zel::TBoolArray flags{true, false};
  volatile bool stop = true;  // the breakpoint is in the next line
  return stop && columns.size() + cube.size() + flags.size() == 12 ? 0 : 1;
}
