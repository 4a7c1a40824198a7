hi
