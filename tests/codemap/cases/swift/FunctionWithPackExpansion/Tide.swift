func a<each T: P, each U>(_ b: repeat (each T, each U)) -> (repeat each T) {}
