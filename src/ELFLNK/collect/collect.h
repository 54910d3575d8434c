// The phase that decides for each input section and common block which output section it joins.
#pragma once

class COLLECTION;

/// The collection phase. Before: all sections that take part are in the root's map. After: each
/// hangs in the tree, specifications that needn't keep an order are dissolved, and the
/// attributes of the tree are settled.
void collect();

/// A new output section in the root; "<unnamed_%d>" for a null or empty name.
COLLECTION* create_default_collection(const char* name);
