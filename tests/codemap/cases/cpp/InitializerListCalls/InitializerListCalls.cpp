int values[] = {run(1), (2), sizeof(int)}, after = 3;
