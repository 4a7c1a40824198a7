class Table: Base<Tide, [String: Int]>, Printing {}
