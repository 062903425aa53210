// Nothing: what is compiled with it are the headers.
