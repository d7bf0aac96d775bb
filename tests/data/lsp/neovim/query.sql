select   parcel_id, nosuch from parcels where area_sqm >1;
SELECT * FROM par
