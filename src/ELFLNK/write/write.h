// The last phase: reports, then the output object on disk. Nothing partial ever stands under the
// output's name: the bytes go to a file beside it, which takes the name when it is complete.
#pragma once

void write();

// Removes what the write phase has put on disk and not completed. Only calls that a signal handler
// may make.
void remove_unfinished_output();
