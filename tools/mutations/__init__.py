"""Small faults put into the engine, to see whether its tests notice."""
