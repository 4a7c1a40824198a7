struct buffer { int size; char bytes[]; };
