#include "front/velmar_test_dispatch.h"

int main(int argc, char **argv) { return velmar_main(argc, argv); }
