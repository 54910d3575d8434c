// The process: nothing but main.
#include "ELFLNK/main/main.h"

int main(int argc, char** argv) {
    return linker_main(argc, argv);
}
