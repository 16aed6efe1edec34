"""What stands behind `orb`: kernel calls, the stored machines, their system, runs in them, and the commands."""
