class Tide { int a; } tide, *other;
