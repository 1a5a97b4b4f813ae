#include "zel/analysis/expressions.h"

namespace zel {

int CheckParanthInExp(std::string_view Exp) {
  int depth = 0;
  int position = 0;
  for (const char c : Exp) {
    ++position;
    if (c == '(') ++depth;
    if (c == ')' && --depth < 0) return -position;
  }
  return depth;
}

}  // namespace zel
