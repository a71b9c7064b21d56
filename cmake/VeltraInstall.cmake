# Install rules follow the library target.
