struct flags { unsigned a : 1, : 2, b : 3; };
