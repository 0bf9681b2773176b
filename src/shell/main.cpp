#include "shell/start.h"

int main(int argc, char** argv) {
    return vga_run(argc, argv);
}
