typeof(1) number = 2;
