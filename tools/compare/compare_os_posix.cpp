#include "compare_os.h"

int main(int argc, char** argv) {
  return tavrine::refcompare::RunCompareProgram(
      tavrine::reftools::ParameterTextFromArguments(argc, argv));
}
