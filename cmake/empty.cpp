// Keeps the platform engines library non-empty while it has no sources.
