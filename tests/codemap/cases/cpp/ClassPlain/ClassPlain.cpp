class Tide {};
