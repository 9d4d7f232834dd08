// TAVCH_LIB_DIR names the folder of the library when the linker does not know it.
fn main() {
    println!("cargo:rerun-if-env-changed=TAVCH_LIB_DIR");
    if let Ok(folder) = std::env::var("TAVCH_LIB_DIR") {
        println!("cargo:rustc-link-search=native={folder}");
        println!("cargo:rustc-link-arg=-Wl,-rpath,{folder}");
    }
    println!("cargo:rustc-link-lib=dylib=tavch");
}
