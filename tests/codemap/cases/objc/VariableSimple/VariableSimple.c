int counter;
