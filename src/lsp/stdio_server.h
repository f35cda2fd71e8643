// The server over standard input and output: reads framed messages as they arrive, answers them,
// and returns the exit status when the client says exit or closes the input.
#pragma once

namespace arbolet::lsp {

// Runs until `exit` or the end of the input; 0 after a shutdown request, 1 otherwise. Nothing
// but protocol messages is written to standard output.
int RunStdioServer();

}  // namespace arbolet::lsp
