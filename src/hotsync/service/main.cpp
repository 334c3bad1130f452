#include "hotsync/service/Manager.h"

int main(int argc, char** argv) {
    return RunManager(argc, argv, TRAMBLE_VERSION);
}
