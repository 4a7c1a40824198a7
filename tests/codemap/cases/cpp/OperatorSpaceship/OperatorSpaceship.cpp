auto operator<=>(const A &a, const B &b) { return a.x <=> b.x; }
