#pragma once

// Whether this process has the server's end of one of the protocol's pipes, with the driver on the other end. For a
// process that ends: nobody else may use its handles meanwhile.
[[nodiscard]] bool HasConnectedPipe();
