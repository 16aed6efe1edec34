"""What `compare` is made of."""
