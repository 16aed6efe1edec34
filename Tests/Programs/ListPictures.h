#pragma once

class Photographer;

/// Pictures of the Machines, History and Containers screens in all their states.
void listScreens(const Photographer &photographer);
