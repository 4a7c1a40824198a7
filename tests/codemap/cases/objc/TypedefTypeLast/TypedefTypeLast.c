unsigned typedef word;
